#include "foundation/VXBoolConditionalLock.h"

#include "foundation/NSObject+Casting.h"

namespace vornix {
namespace {

// A lock changes hands often, and a number never changes: two serve all locks.
const std::shared_ptr<NSNumber>& numberOf(bool value) {
  static const auto& no = *new auto(std::make_shared<NSNumber>(Value(false)));
  static const auto& yes = *new auto(std::make_shared<NSNumber>(Value(true)));
  return value ? yes : no;
}

}  // namespace

std::shared_ptr<VXBoolConditionalLock> VXBoolConditionalLock::create() {
  return VXConditionalLock::create<VXBoolConditionalLock>();
}

void VXBoolConditionalLock::setupInitialValues() {
  VXConditionalLock::setupInitialValues();
  setBoolValue(false);
}

bool VXBoolConditionalLock::shouldLockForValue(const std::shared_ptr<NSObject>& /*value*/) {
  return boolValue();
}

void VXBoolConditionalLock::setBoolValue(bool value) {
  setValue(numberOf(value));
}

bool VXBoolConditionalLock::boolValue() const {
  const auto number = dynamicCastObject<NSNumber>(value());
  return number && number->boolValue();
}

}  // namespace vornix
