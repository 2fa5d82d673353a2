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
  const Lock lock(state_->mutex);
  ++state_->entered;
}

void DispatchGroup::leave() {
  const auto state = state_;
  {
    const Lock lock(state->mutex);
    if (state->entered == 0 || --state->entered > 0) return;
  }
  // Without the mutex, so that nobody wakes up only to wait for it.
  state->changed.notifyAll();
}

void DispatchGroup::wait() {
  State& state = *state_;
  const Lock lock(state.mutex);
  while (state.entered > 0) state.changed.wait(state.mutex);
}

bool DispatchGroup::waitUntil(Date deadline) {
  return waitUntil(timePoint(deadline));
}

bool DispatchGroup::waitUntil(system_clock::time_point deadline) {
  State& state = *state_;
  const Lock lock(state.mutex);
  while (state.entered > 0) {
    if (!state.changed.waitUntil(state.mutex, deadline)) break;
  }
  return state.entered == 0;
}

}  // namespace vornix
