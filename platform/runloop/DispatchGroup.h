#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
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
  struct State {
    std::mutex mutex;
    std::condition_variable changed;
    int entered = 0;
  };

  // Whoever leaves last holds it as well: a freed waiter may end the group at once.
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace vornix
