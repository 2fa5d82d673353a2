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
  const std::lock_guard lock(mutex_);
  ++entered_;
}

void DispatchGroup::leave() {
  const std::lock_guard lock(mutex_);
  if (entered_ > 0 && --entered_ == 0) changed_.notify_all();
}

void DispatchGroup::wait() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return entered_ == 0; });
}

bool DispatchGroup::waitUntil(Date deadline) {
  return waitUntil(timePoint(deadline));
}

bool DispatchGroup::waitUntil(system_clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  return changed_.wait_until(lock, deadline, [this] { return entered_ == 0; });
}

}  // namespace vornix
