#include "platform/base/NSNull.h"

namespace vornix {
namespace {

bool isNull(const NSObject& object) {
  return dynamic_cast<const NSNull*>(&object) != nullptr;
}

}  // namespace

std::shared_ptr<NSNull> NSNull::null() {
  static const auto& shared = *new std::shared_ptr<NSNull>(std::make_shared<NSNull>());
  return shared;
}

bool NSNull::isEqual(const NSObject& other) const {
  return isNull(other);
}

std::shared_ptr<NSObject> objectUnlessNull(const std::shared_ptr<NSObject>& object) {
  return object && isNull(*object) ? nullptr : object;
}

}  // namespace vornix
