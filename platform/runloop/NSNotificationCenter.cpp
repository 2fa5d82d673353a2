#include "platform/runloop/NSNotificationCenter.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/runloop/GuardedCall.h"

namespace vornix {
namespace {

struct Observer {
  std::string name;
  NSNotificationCenter::Handler handler;
  const NSObject* object = nullptr;
  std::atomic<bool> isRemoved = false;

  [[nodiscard]] bool wants(const NSNotification& notification) const {
    return name == notification.name && (object == nullptr || object == notification.object.get());
  }
};

}  // namespace

class NSNotificationCenter::State {
 public:
  void add(std::shared_ptr<Observer> observer) {
    const Lock lock(mutex_);
    observers_.push_back(std::move(observer));
  }

  // Answers the observer so that it is released without the lock.
  std::shared_ptr<Observer> remove(const void* token) {
    const Lock lock(mutex_);
    const auto found = std::find_if(observers_.begin(), observers_.end(),
                                    [&](const auto& observer) { return observer.get() == token; });
    if (found == observers_.end()) return nullptr;
    auto removed = std::move(*found);
    observers_.erase(found);
    removed->isRemoved = true;
    return removed;
  }

  [[nodiscard]] bool hasObserver(std::string_view name) const {
    const Lock lock(mutex_);
    return std::ranges::any_of(observers_,
                               [&](const auto& observer) { return observer->name == name; });
  }

  [[nodiscard]] std::vector<std::shared_ptr<Observer>> observersOf(
      const NSNotification& notification) const {
    const Lock lock(mutex_);
    std::vector<std::shared_ptr<Observer>> result;
    for (const auto& observer : observers_) {
      if (observer->wants(notification)) result.push_back(observer);
    }
    return result;
  }

 private:
  mutable Mutex mutex_;
  std::vector<std::shared_ptr<Observer>> observers_ VORNIX_GUARDED_BY(mutex_);
};

NSNotificationCenter::NSNotificationCenter() : state_(std::make_unique<State>()) {}

NSNotificationCenter::~NSNotificationCenter() = default;

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
  static auto& center = *new NSNotificationCenter;
  return center;
}

NSNotificationCenter::ObserverToken NSNotificationCenter::addObserver(std::string_view name,
                                                                      Handler handler,
                                                                      const NSObject* object) {
  auto observer = std::make_shared<Observer>();
  observer->name = name;
  observer->handler = std::move(handler);
  observer->object = object;
  state_->add(observer);
  return observer;
}

void NSNotificationCenter::removeObserver(const ObserverToken& token) {
  (void)state_->remove(token.get());
}

bool NSNotificationCenter::hasObserver(std::string_view name) const {
  return state_->hasObserver(name);
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
  for (const auto& observer : state_->observersOf(notification)) {
    if (observer->isRemoved) continue;
    callReportingExceptions([&] { observer->handler(notification); },
                            "an observer of \"" + notification.name + "\"");
  }
}

}  // namespace vornix
