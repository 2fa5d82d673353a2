#include "platform/runloop/RunLoopTimers.h"

#include <algorithm>
#include <utility>

namespace vornix {

NSRunLoop::TimerToken RunLoopTimers::add(NSRunLoop::Block block, double date,
                                         const RunLoopModes& modes) {
  const auto position =
      std::upper_bound(timers_.begin(), timers_.end(), date,
                       [](double added, const Timer& timer) { return added < timer.date; });
  timers_.insert(position, Timer{++lastToken_, date, RunLoopModeSet(modes), std::move(block)});
  return lastToken_;
}

void RunLoopTimers::cancel(NSRunLoop::TimerToken token) {
  const auto found = std::find_if(timers_.begin(), timers_.end(),
                                  [&](const Timer& timer) { return timer.token == token; });
  if (found == timers_.end()) return;
  // What the block holds may come back here when it is released.
  const NSRunLoop::Block released = std::move(found->block);
  timers_.erase(found);
}

std::optional<double> RunLoopTimers::nextDate(const RunningMode& mode) const {
  const auto found = first(mode);
  return found == timers_.end() ? std::nullopt : std::optional(found->date);
}

std::optional<NSRunLoop::Block> RunLoopTimers::takeDue(const RunningMode& mode, double now) {
  const auto found = timers_.begin() + (first(mode) - timers_.begin());
  if (found == timers_.end() || found->date > now) return std::nullopt;
  std::optional<NSRunLoop::Block> block(std::move(found->block));
  timers_.erase(found);
  return block;
}

std::vector<RunLoopTimers::Timer>::const_iterator RunLoopTimers::first(
    const RunningMode& mode) const {
  return std::find_if(timers_.begin(), timers_.end(),
                      [&](const Timer& timer) { return timer.modes.contains(mode); });
}

}  // namespace vornix
