#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

class NSDictionary;

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

  // Key-value coding: a property by its name. A class overrides both for the keys that it has,
  // setting through the property's own setter so that the change is announced, and leaves every
  // other key to its base. The base reports an unknown key, answers null and sets nothing.
  [[nodiscard]] virtual std::shared_ptr<NSObject> valueForKey(std::string_view key);
  virtual void setValueForKey(const std::shared_ptr<NSObject>& value, std::string_view key);
  // The same for keys joined by ".", each of which but the last names an object to go on from.
  // Where one of these is missing, the answer is null, and nothing is set.
  [[nodiscard]] std::shared_ptr<NSObject> valueForKeyPath(std::string_view keyPath);
  void setValueForKeyPath(const std::shared_ptr<NSObject>& value, std::string_view keyPath);

  // Bindings. Sets the key `binding` of this object to what `withKeyPath` of `toObject` leads to:
  // at once, and at every change of a key of that path, on the thread of the change. The value
  // first passes the transformer that `options` name (BindingInfo.h). A binding of the same name is
  // replaced. The binding lives until `unbind` or the death of this object and retains `toObject`,
  // unless that is this object; two objects bound to each other live until one is unbound. An
  // exception of a setter is reported. Only for objects held by a shared pointer; without
  // `toObject` nothing happens. Both are reported.
  void bind(std::string_view binding, const std::shared_ptr<NSObject>& toObject,
            std::string_view withKeyPath, std::shared_ptr<NSDictionary> options = nullptr);
  // No effect where there is no such binding.
  void unbind(std::string_view binding);
  // What was bound, under the keys of BindingInfo.h; null where there is no such binding.
  [[nodiscard]] virtual std::shared_ptr<NSDictionary> infoForBinding(std::string_view binding);

 private:
  class State;
  State& state();

  // Made for the first observer or binding: most objects never have one.
  std::shared_ptr<State> state_;
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
