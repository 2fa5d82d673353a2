#include "foundation/VXConditionalLock.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace vornix {
namespace {

using std::chrono::system_clock;

// Longer limits would leave the range of the clock.
constexpr double kLongestLimitSeconds = 4e9;

system_clock::time_point deadlineAfter(double seconds) {
  constexpr double kNanosecondsPerSecond = 1e9;
  const double limit = std::min(seconds, kLongestLimitSeconds) * kNanosecondsPerSecond;
  return system_clock::now() + std::chrono::nanoseconds(static_cast<std::int64_t>(limit));
}

}  // namespace

void VXConditionalLock::initialize() {
  setupInitialValues();
  const Lock lock(monitor_);
  setLocked(shouldLockForValue(value_));
}

void VXConditionalLock::setupInitialValues() {
  setGroupsToLeaveOnUnlock({});
}

bool VXConditionalLock::shouldLockForValue(const std::shared_ptr<NSObject>& /*value*/) {
  return false;
}

void VXConditionalLock::setValue(std::shared_ptr<NSObject> value) {
  // Released after the monitor: the end of a value may wait for a thread that asks this lock.
  const auto current = value;
  std::shared_ptr<NSObject> old;
  const Lock lock(monitor_);
  old = std::exchange(value_, std::move(value));
  setLocked(shouldLockForValue(current));
}

std::shared_ptr<NSObject> VXConditionalLock::value() const {
  const Lock lock(monitor_);
  return value_;
}

void VXConditionalLock::setLocked(bool locked) {
  const Lock lock(monitor_);
  if (isLocked_ == locked) return;
  isLocked_ = locked;
  if (locked) return;
  for (const auto& group : groupsToLeaveOnUnlock_) {
    if (group) group->leave();
  }
  groupsToLeaveOnUnlock_.clear();
}

void VXConditionalLock::waitForUnlockWithTimeout(double seconds) {
  const auto group = joinWaiters();
  if (!group) return;
  if (seconds > 0) {
    group->waitUntil(deadlineAfter(seconds));
  } else {
    group->wait();
  }
}

void VXConditionalLock::waitForUnlock() {
  waitForUnlockWithTimeout(-1.0);
}

VXConditionalLock::Groups VXConditionalLock::groupsToLeaveOnUnlock() const {
  const Lock lock(monitor_);
  return groupsToLeaveOnUnlock_;
}

void VXConditionalLock::setGroupsToLeaveOnUnlock(Groups groups) {
  const Lock lock(monitor_);
  groupsToLeaveOnUnlock_ = std::move(groups);
}

// The check and the registration happen under the monitor that an unlock holds as well, so that no
// unlock slips between them; the wait is outside it. Null when the lock is unlocked.
std::shared_ptr<DispatchGroup> VXConditionalLock::joinWaiters() {
  const Lock lock(monitor_);
  if (!isLocked_) return nullptr;
  auto group = std::make_shared<DispatchGroup>();
  group->enter();
  groupsToLeaveOnUnlock_.insert(group);
  return group;
}

}  // namespace vornix
