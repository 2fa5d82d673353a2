#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// The root of every class whose instances are shared, observed, or held without knowing their
// type. Not thread-safe by itself.
class NSObject : public std::enable_shared_from_this<NSObject> {
 public:
  NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;
  virtual ~NSObject();

  // Identity unless a subclass knows better.
  [[nodiscard]] virtual bool isEqual(const NSObject& other) const { return this == &other; }
  // The text that "%@" prints: "<ClassName: 0xaddress>" unless a subclass knows better.
  [[nodiscard]] virtual std::string description() const;
  [[nodiscard]] virtual std::string_view className() const { return "NSObject"; }

  // Key-value observing. The change notice is sent synchronously, on the thread that calls
  // `didChangeValueForKey`, to every observer of that key in order of registration, also when the
  // new value equals the old one. An observer that has died, or was removed during the delivery, is
  // skipped; one added during it waits for the next. Observers are not retained.
  void addObserver(const std::shared_ptr<NSObject>& observer, std::string_view keyPath);
  void removeObserver(const NSObject& observer, std::string_view keyPath);
  virtual void willChangeValueForKey(std::string_view key);
  virtual void didChangeValueForKey(std::string_view key);
  // Called for a change of an observed key; the base ignores it.
  virtual void observeValueForKeyPath(std::string_view keyPath, NSObject& object);

 private:
  class Observers;
  std::shared_ptr<Observers> observers_;
};

// A boolean, integer or real as an object.
class NSNumber final : public NSObject {
 public:
  // A value that is no number counts as the integer that it converts to.
  explicit NSNumber(const Value& number);

  [[nodiscard]] bool boolValue() const { return value_.boolValue(); }
  [[nodiscard]] std::int64_t integerValue() const { return value_.integerValue(); }
  [[nodiscard]] double doubleValue() const { return value_.doubleValue(); }
  [[nodiscard]] const Value& value() const { return value_; }

  [[nodiscard]] bool isEqual(const NSObject& other) const override;
  [[nodiscard]] std::string description() const override { return value_.description(); }
  [[nodiscard]] std::string_view className() const override { return "NSNumber"; }

 private:
  Value value_;
};

// A text as an object.
class NSString final : public NSObject {
 public:
  explicit NSString(std::string_view text) : text_(text) {}

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] bool isEqual(const NSObject& other) const override;
  [[nodiscard]] std::string description() const override { return text_; }
  [[nodiscard]] std::string_view className() const override { return "NSString"; }

 private:
  std::string text_;
};

}  // namespace vornix
