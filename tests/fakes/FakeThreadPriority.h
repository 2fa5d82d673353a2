#pragma once

#include <mutex>
#include <set>
#include <thread>

#include "platform/runloop/ThreadPriority.h"

namespace vornix::fakes {

// Remembers who asked.
class FakeThreadPriority final : public ThreadPriority {
 public:
  void lowerToBackground() override {
    const std::lock_guard lock(mutex_);
    lowered_.insert(std::this_thread::get_id());
  }
  [[nodiscard]] bool isBackground() const override {
    const std::lock_guard lock(mutex_);
    return lowered_.contains(std::this_thread::get_id());
  }

 private:
  mutable std::mutex mutex_;
  std::set<std::thread::id> lowered_;
};

}  // namespace vornix::fakes
