#pragma once

#include <atomic>

#include "platform/desktop/AccessibilityStatus.h"

namespace vornix::fakes {

// A desktop that tells what a test wants. Set before threads read it.
class FakeAccessibilityStatus final : public AccessibilityStatus {
 public:
  std::optional<bool> screenReader;
  mutable std::atomic<int> questions = 0;

  [[nodiscard]] std::optional<bool> isScreenReaderEnabled() const override {
    ++questions;
    return screenReader;
  }
};

// The one that `sharedAccessibilityStatus` answers on the fake platform.
FakeAccessibilityStatus& accessibilityStatus();

}  // namespace vornix::fakes
