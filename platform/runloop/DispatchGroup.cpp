#include "platform/runloop/DispatchGroup.h"

#include <algorithm>

namespace vornix {
namespace {

using std::chrono::system_clock;

// Dates that the clock cannot express are as far away as it can.
system_clock::time_point timePoint(Date date) {
  constexpr double kFarAway = 4e9;
  const double seconds = std::clamp(date.unixTime(), 0.0, kFarAway);
  return system_clock::time_point(
      std::chrono::ceil<system_clock::duration>(std::chrono::duration<double>(seconds)));
}

}  // namespace

void DispatchGroup::enter() {
  const std::lock_guard lock(state_->mutex);
  ++state_->entered;
}

void DispatchGroup::leave() {
  const auto state = state_;
  {
    const std::lock_guard lock(state->mutex);
    if (state->entered == 0 || --state->entered > 0) return;
  }
  // Without the mutex, so that nobody wakes up only to wait for it.
  state->changed.notify_all();
}

void DispatchGroup::wait() {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait(lock, [this] { return state_->entered == 0; });
}

bool DispatchGroup::waitUntil(Date deadline) {
  return waitUntil(timePoint(deadline));
}

bool DispatchGroup::waitUntil(system_clock::time_point deadline) {
  std::unique_lock lock(state_->mutex);
  return state_->changed.wait_until(lock, deadline, [this] { return state_->entered == 0; });
}

}  // namespace vornix
