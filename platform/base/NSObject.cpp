#include "platform/base/NSObject.h"

#include <algorithm>

#include "platform/base/Format.h"
#include "platform/base/NSObjectState.h"

namespace vornix {

namespace {

// Drops those that have died. At least half of what there is then is free, so that each observer's
// share of this work is small, however many come and go.
template <typename Observers>
void makeRoom(Observers& observers) {
  std::erase_if(observers, [](const auto& entry) { return entry->observer.expired(); });
  constexpr std::size_t fewest = 2;
  observers.reserve(std::max(fewest, observers.size() * 2));
}

}  // namespace

NSObject::~NSObject() = default;

std::string NSObject::description() const {
  return text::format("<%@: %p>", className(), static_cast<const void*>(this));
}

NSObject::State& NSObject::state() {
  if (!state_) state_ = std::make_shared<State>();
  return *state_;
}

void NSObject::addObserver(const std::shared_ptr<NSObject>& observer, std::string_view keyPath) {
  if (!observer) return;
  auto& observers = state().observers;
  if (observers.size() == observers.capacity()) makeRoom(observers);
  observers.push_back(std::make_shared<State::Observer>(
      State::Observer{observer, observer.get(), std::string(keyPath)}));
}

void NSObject::removeObserver(const NSObject& observer, std::string_view keyPath) {
  if (!state_) return;
  std::erase_if(state_->observers, [&](const auto& entry) {
    const bool matches = entry->identity == &observer && entry->keyPath == keyPath;
    if (matches) entry->isRemoved = true;
    return matches;
  });
}

void NSObject::willChangeValueForKey(std::string_view /*key*/) {}

void NSObject::didChangeValueForKey(std::string_view key) {
  if (!state_ || state_->observers.empty()) return;
  // An observer may release the last reference to this object, and add or remove observers.
  const auto keptAlive = weak_from_this().lock();
  const auto observers = state_->observers;
  for (const auto& entry : observers) {
    if (entry->isRemoved || entry->keyPath != key) continue;
    if (const auto observer = entry->observer.lock()) observer->observeValueForKeyPath(key, *this);
  }
}

void NSObject::observeValueForKeyPath(std::string_view /*keyPath*/, NSObject& /*object*/) {}

NSNumber::NSNumber(const Value& number)
    : value_(number.isNumber() ? number : Value(number.integerValue())) {}

bool NSNumber::isEqual(const NSObject& other) const {
  const auto* number = dynamic_cast<const NSNumber*>(&other);
  return number != nullptr && number->value_ == value_;
}

bool NSString::isEqual(const NSObject& other) const {
  const auto* string = dynamic_cast<const NSString*>(&other);
  return string != nullptr && string->text_ == text_;
}

}  // namespace vornix
