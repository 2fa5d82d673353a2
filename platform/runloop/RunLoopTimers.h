#pragma once

#include <optional>
#include <vector>

#include "platform/runloop/RunLoopModeSet.h"

namespace vornix {

// The delayed blocks of a loop, by date, equal dates in the order added. Dates are on the waiter's
// clock. Owning thread only.
class RunLoopTimers {
 public:
  NSRunLoop::TimerToken add(NSRunLoop::Block block, double date, const RunLoopModes& modes);
  void cancel(NSRunLoop::TimerToken token);

  [[nodiscard]] std::optional<double> nextDate(const RunningMode& mode) const;
  // The earliest block of the mode when its date has come; taken off the list.
  [[nodiscard]] std::optional<NSRunLoop::Block> takeDue(const RunningMode& mode, double now);

 private:
  struct Timer {
    NSRunLoop::TimerToken token;
    double date;
    RunLoopModeSet modes;
    NSRunLoop::Block block;
  };

  [[nodiscard]] std::vector<Timer>::const_iterator first(const RunningMode& mode) const;

  std::vector<Timer> timers_;
  NSRunLoop::TimerToken lastToken_ = 0;
};

}  // namespace vornix
