#pragma once

#include <memory>

#include "platform/bindings/NSValueTransformer.h"
#include "tests/support/Record.h"

namespace vornix::tests {

// 20 degrees Celsius there, 68 degrees Fahrenheit here.
class FahrenheitTransformer final : public NSValueTransformer {
 public:
  std::shared_ptr<NSObject> transformedValue(const std::shared_ptr<NSObject>& value) override {
    const auto celsius = std::dynamic_pointer_cast<NSNumber>(value);
    return celsius ? number(celsius->doubleValue() * 9 / 5 + 32) : nullptr;
  }
  std::shared_ptr<NSObject> reverseTransformedValue(
      const std::shared_ptr<NSObject>& value) override {
    const auto fahrenheit = std::dynamic_pointer_cast<NSNumber>(value);
    return fahrenheit ? number((fahrenheit->doubleValue() - 32) * 5 / 9) : nullptr;
  }
};

// Whether there is a value; there is no way back from that.
class PresenceTransformer final : public NSValueTransformer {
 public:
  std::shared_ptr<NSObject> transformedValue(const std::shared_ptr<NSObject>& value) override {
    return number(value != nullptr);
  }
  [[nodiscard]] bool allowsReverseTransformation() const override { return false; }
};

// Its own way back.
class NegationTransformer final : public NSValueTransformer {
 public:
  std::shared_ptr<NSObject> transformedValue(const std::shared_ptr<NSObject>& value) override {
    const auto boolean = std::dynamic_pointer_cast<NSNumber>(value);
    return number(!(boolean && boolean->boolValue()));
  }
};

}  // namespace vornix::tests
