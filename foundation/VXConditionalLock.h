#pragma once

#include <atomic>
#include <concepts>
#include <memory>
#include <set>

#include "platform/base/Mutex.h"
#include "platform/base/NSObject.h"
#include "platform/runloop/DispatchGroup.h"

namespace vornix {

// Holds a value that decides whether the lock is locked; threads wait until it is not. It excludes
// nobody: setting the value never blocks, and an unlock frees every waiter at once. Which values
// lock is up to the subclass; a plain lock is never locked. Any thread.
class VXConditionalLock : public NSObject {
 public:
  using Groups = std::set<std::shared_ptr<DispatchGroup>>;

  // Only `create` has one: a lock is made in two steps, since the second asks its class.
  class CreationKey {
    friend class VXConditionalLock;
    CreationKey() = default;
  };
  explicit VXConditionalLock(CreationKey /*key*/) {}

  template <std::derived_from<VXConditionalLock> Lock = VXConditionalLock>
  [[nodiscard]] static std::shared_ptr<Lock> create() {
    auto lock = std::make_shared<Lock>(CreationKey());
    lock->initialize();
    return lock;
  }

  // Called once, when the lock is made. An override calls the base first.
  virtual void setupInitialValues();
  // Whether a lock with this value is locked. Called under the lock's monitor; what it throws
  // leaves `setValue`, with the new value stored and the state as it was.
  [[nodiscard]] virtual bool shouldLockForValue(const std::shared_ptr<NSObject>& value);

  void setValue(std::shared_ptr<NSObject> value);
  [[nodiscard]] std::shared_ptr<NSObject> value() const;

  // For use by `setValue`. A change to unlocked frees every waiter; no change does nothing.
  void setLocked(bool locked);
  [[nodiscard]] bool isLocked() const { return isLocked_; }

  // Returns when the lock is unlocked, or when that many seconds have passed on the wall clock; the
  // caller cannot tell which. Zero or less means without limit.
  void waitForUnlockWithTimeout(double seconds);
  void waitForUnlock();

  // One for each waiter, those included that have given up since the last unlock.
  [[nodiscard]] Groups groupsToLeaveOnUnlock() const;
  void setGroupsToLeaveOnUnlock(Groups groups);

  [[nodiscard]] std::string_view className() const override { return "VXConditionalLock"; }

 private:
  void initialize();
  [[nodiscard]] std::shared_ptr<DispatchGroup> joinWaiters();

  mutable RecursiveMutex monitor_;
  std::shared_ptr<NSObject> value_ VORNIX_GUARDED_BY(monitor_);
  std::atomic<bool> isLocked_ = false;
  Groups groupsToLeaveOnUnlock_ VORNIX_GUARDED_BY(monitor_);
};

}  // namespace vornix
