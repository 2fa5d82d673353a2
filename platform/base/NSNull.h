#pragma once

#include <memory>

#include "platform/base/NSObject.h"

namespace vornix {

// The null placeholder: stands for nothing where an object has to stand.
class NSNull final : public NSObject {
 public:
  // The one that all share.
  [[nodiscard]] static std::shared_ptr<NSNull> null();

  [[nodiscard]] bool isEqual(const NSObject& other) const override;
  [[nodiscard]] std::string description() const override { return "<null>"; }
  [[nodiscard]] std::string_view className() const override { return "NSNull"; }
};

// The same object, and null for the placeholder.
[[nodiscard]] std::shared_ptr<NSObject> objectUnlessNull(const std::shared_ptr<NSObject>& object);

}  // namespace vornix
