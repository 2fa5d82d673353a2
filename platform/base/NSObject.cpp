#include "platform/base/NSObject.h"

#include <algorithm>
#include <vector>

#include "platform/base/Format.h"

namespace vornix {

class NSObject::Observers {
 public:
  struct Entry {
    std::weak_ptr<NSObject> observer;
    const NSObject* identity;
    std::string keyPath;
  };

  std::vector<Entry> entries;
};

NSObject::~NSObject() = default;

std::string NSObject::description() const {
  return text::format("<%@: %p>", className(), static_cast<const void*>(this));
}

void NSObject::addObserver(const std::shared_ptr<NSObject>& observer, std::string_view keyPath) {
  if (!observers_) observers_ = std::make_shared<Observers>();
  observers_->entries.push_back({observer, observer.get(), std::string(keyPath)});
}

void NSObject::removeObserver(const NSObject& observer, std::string_view keyPath) {
  if (!observers_) return;
  std::erase_if(observers_->entries, [&](const Observers::Entry& entry) {
    return entry.identity == &observer && entry.keyPath == keyPath;
  });
}

void NSObject::willChangeValueForKey(std::string_view /*key*/) {}

void NSObject::didChangeValueForKey(std::string_view key) {
  if (!observers_) return;
  // A copy, since an observer may add or remove observers.
  const std::vector<Observers::Entry> entries = observers_->entries;
  for (const auto& entry : entries) {
    if (entry.keyPath != key) continue;
    if (const auto observer = entry.observer.lock()) observer->observeValueForKeyPath(key, *this);
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
