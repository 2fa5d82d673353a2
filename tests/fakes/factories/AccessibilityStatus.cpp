#include "tests/fakes/FakeAccessibilityStatus.h"

namespace vornix {

fakes::FakeAccessibilityStatus& fakes::accessibilityStatus() {
  static auto& status = *new FakeAccessibilityStatus;
  return status;
}

const AccessibilityStatus& sharedAccessibilityStatus() {
  return fakes::accessibilityStatus();
}

}  // namespace vornix
