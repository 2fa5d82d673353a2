#include "foundation/VXBoolConditionalLock.h"

#include "foundation/NSObject+Casting.h"

namespace vornix {

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
  setValue(std::make_shared<NSNumber>(Value(value)));
}

bool VXBoolConditionalLock::boolValue() const {
  const auto number = dynamicCastObject<NSNumber>(value());
  return number && number->boolValue();
}

}  // namespace vornix
