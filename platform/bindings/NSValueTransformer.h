#pragma once

#include <memory>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// Turns the value on one side of a binding into that of the other.
class NSValueTransformer : public NSObject {
 public:
  // Values may be null on both sides.
  [[nodiscard]] virtual std::shared_ptr<NSObject> transformedValue(
      const std::shared_ptr<NSObject>& value) = 0;
  // The way back; the base goes it like the way there. Where the class allows none, the base
  // answers null and reports it.
  [[nodiscard]] virtual std::shared_ptr<NSObject> reverseTransformedValue(
      const std::shared_ptr<NSObject>& value);
  [[nodiscard]] virtual bool allowsReverseTransformation() const { return true; }

  // The process's transformers. Null takes a name back. Any thread.
  static void setValueTransformer(std::shared_ptr<NSValueTransformer> transformer,
                                  std::string_view forName);
  // Null where none has that name.
  [[nodiscard]] static std::shared_ptr<NSValueTransformer> valueTransformerForName(
      std::string_view name);

  [[nodiscard]] std::string_view className() const override { return "NSValueTransformer"; }
};

}  // namespace vornix
