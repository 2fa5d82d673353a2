#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "platform/base/Date.h"

namespace vornix {

// Counts work under way; threads wait until none is left. Leaving more often than entering has no
// effect. Any thread.
class DispatchGroup {
 public:
  void enter();
  void leave();
  void wait();
  // Waits until the machine's wall clock reaches the date at the most; true when nothing is left.
  bool waitUntil(Date deadline);
  bool waitUntil(std::chrono::system_clock::time_point deadline);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int entered_ = 0;
};

}  // namespace vornix
