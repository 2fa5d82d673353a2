#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/base/NSObject.h"

namespace vornix::tests {

// An object with the properties that its test names; every change is announced.
class Record final : public NSObject {
 public:
  using Property = std::pair<const std::string, std::shared_ptr<NSObject>>;

  Record(std::initializer_list<Property> properties) : properties_(properties) {}

  [[nodiscard]] static std::shared_ptr<Record> create(std::initializer_list<Property> properties) {
    return std::make_shared<Record>(properties);
  }

  [[nodiscard]] std::shared_ptr<NSObject> valueForKey(std::string_view key) override {
    const auto found = properties_.find(key);
    return found == properties_.end() ? NSObject::valueForKey(key) : found->second;
  }
  void setValueForKey(const std::shared_ptr<NSObject>& value, std::string_view key) override {
    const auto found = properties_.find(key);
    if (found == properties_.end()) return NSObject::setValueForKey(value, key);
    willChangeValueForKey(key);
    found->second = value;
    ++changes_;
    didChangeValueForKey(key);
  }

  // How often a property was set.
  [[nodiscard]] int changes() const { return changes_; }
  [[nodiscard]] std::string_view className() const override { return "Record"; }

 private:
  std::map<std::string, std::shared_ptr<NSObject>, std::less<>> properties_;
  int changes_ = 0;
};

[[nodiscard]] inline std::shared_ptr<NSObject> text(std::string_view characters) {
  return std::make_shared<NSString>(characters);
}
[[nodiscard]] inline std::shared_ptr<NSObject> number(const Value& value) {
  return std::make_shared<NSNumber>(value);
}
// As "%@" prints the object, "(null)" for none.
[[nodiscard]] inline std::string described(const std::shared_ptr<NSObject>& object) {
  return object ? object->description() : "(null)";
}

}  // namespace vornix::tests
