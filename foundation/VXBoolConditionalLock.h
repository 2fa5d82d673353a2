#pragma once

#include <memory>

#include "foundation/VXConditionalLock.h"

namespace vornix {

// A lock that is locked while its value is true. A value that is no number counts as false. Any
// thread.
class VXBoolConditionalLock : public VXConditionalLock {
 public:
  using VXConditionalLock::VXConditionalLock;

  // A new lock is false, so unlocked.
  [[nodiscard]] static std::shared_ptr<VXBoolConditionalLock> create();

  void setupInitialValues() override;
  // Judges the present value, whatever the argument.
  [[nodiscard]] bool shouldLockForValue(const std::shared_ptr<NSObject>& value) override;

  void setBoolValue(bool value);
  [[nodiscard]] bool boolValue() const;

  [[nodiscard]] std::string_view className() const override { return "VXBoolConditionalLock"; }
};

}  // namespace vornix
