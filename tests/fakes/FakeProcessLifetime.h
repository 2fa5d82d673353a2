#pragma once

#include <atomic>
#include <vector>

#include "platform/desktop/ProcessLifetime.h"

namespace vornix::fakes {

// What the fake `endProcess` throws, since it may not return.
struct ProcessEnded {
  int status = 0;
};

// The process's life as a test plays it.
class FakeProcessLifetime {
 public:
  // As if the process had got SIGTERM. Any thread.
  void requestTermination();
  [[nodiscard]] bool terminationWasRequested() const { return isRequested_; }
  // Forgets the request and the statuses.
  void reset();

  void watch(EventWaiter& waiter) { waiter_ = &waiter; }
  // Notes the status, lets the main loop come to its end, throws `ProcessEnded`.
  [[noreturn]] void end(int status);
  [[nodiscard]] const std::vector<int>& endStatuses() const { return statuses_; }

 private:
  std::atomic<EventWaiter*> waiter_ = nullptr;
  std::atomic<bool> isRequested_ = false;
  std::vector<int> statuses_;
};

// The one behind `endProcess` and its like on the fake platform.
FakeProcessLifetime& processLifetime();

}  // namespace vornix::fakes
