#pragma once

#include <cstddef>
#include <future>
#include <memory>
#include <thread>

#include "foundation/VXConditionalLock.h"

namespace vornix::tests {

// Returns when that many threads wait on the lock.
inline void awaitWaiters(const VXConditionalLock& lock, std::size_t count) {
  while (lock.groupsToLeaveOnUnlock().size() < count) std::this_thread::yield();
}

// A thread that waits; ready when it no longer does.
[[nodiscard]] inline std::future<void> waiting(const std::shared_ptr<VXConditionalLock>& lock,
                                               double timeout) {
  return std::async(std::launch::async, [=] { lock->waitForUnlockWithTimeout(timeout); });
}

}  // namespace vornix::tests
