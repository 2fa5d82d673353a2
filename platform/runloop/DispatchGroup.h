#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "platform/base/Date.h"
#include "platform/base/Mutex.h"

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
    Mutex mutex;
    Condition changed;
    int entered VORNIX_GUARDED_BY(mutex) = 0;
  };

  // Whoever leaves last holds it as well: a freed waiter may end the group at once.
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace vornix
