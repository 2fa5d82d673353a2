#include "platform/base/NSDictionary.h"

#include <algorithm>

#include "platform/base/NSNull.h"

namespace vornix {

NSDictionary::NSDictionary(std::initializer_list<Entry> entries) {
  for (const auto& entry : entries) {
    if (entry.second) objects_.insert(entry);
  }
}

std::shared_ptr<NSObject> NSDictionary::objectForKey(std::string_view key) const {
  const auto found = objects_.find(key);
  return found == objects_.end() ? nullptr : found->second;
}

std::shared_ptr<NSObject> NSDictionary::valueForKey(std::string_view key) {
  return objectForKey(key);
}

bool NSDictionary::isEqual(const NSObject& other) const {
  const auto* dictionary = dynamic_cast<const NSDictionary*>(&other);
  return dictionary != nullptr && std::ranges::equal(objects_, dictionary->objects_,
                                                     [](const auto& left, const auto& right) {
                                                       return left.first == right.first &&
                                                              left.second->isEqual(*right.second);
                                                     });
}

std::string NSDictionary::description() const {
  return Value(described()).description();
}

Dictionary NSDictionary::described() const {
  Dictionary result;
  for (const auto& [key, object] : objects_) {
    if (const auto* number = dynamic_cast<const NSNumber*>(object.get())) {
      result.set(key, number->value());
    } else if (const auto* dictionary = dynamic_cast<const NSDictionary*>(object.get())) {
      result.set(key, dictionary->described());
    } else if (!objectUnlessNull(object)) {
      result.set(key, Null());
    } else {
      result.set(key, object->description());
    }
  }
  return result;
}

}  // namespace vornix
