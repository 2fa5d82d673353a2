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
    bool isRemoved = false;
  };

  // Shared, so that a delivery going on sees a removal.
  std::vector<std::shared_ptr<Entry>> entries;
};

NSObject::~NSObject() = default;

std::string NSObject::description() const {
  return text::format("<%@: %p>", className(), static_cast<const void*>(this));
}

void NSObject::addObserver(const std::shared_ptr<NSObject>& observer, std::string_view keyPath) {
  if (!observer) return;
  if (!observers_) observers_ = std::make_shared<Observers>();
  std::erase_if(observers_->entries, [](const auto& entry) { return entry->observer.expired(); });
  observers_->entries.push_back(std::make_shared<Observers::Entry>(
      Observers::Entry{observer, observer.get(), std::string(keyPath)}));
}

void NSObject::removeObserver(const NSObject& observer, std::string_view keyPath) {
  if (!observers_) return;
  std::erase_if(observers_->entries, [&](const auto& entry) {
    const bool matches = entry->identity == &observer && entry->keyPath == keyPath;
    if (matches) entry->isRemoved = true;
    return matches;
  });
}

void NSObject::willChangeValueForKey(std::string_view /*key*/) {}

void NSObject::didChangeValueForKey(std::string_view key) {
  if (!observers_) return;
  // An observer may release the last reference to this object, and add or remove observers.
  const auto keptAlive = weak_from_this().lock();
  const auto entries = observers_->entries;
  for (const auto& entry : entries) {
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
