#pragma once

#include <optional>

namespace vornix {

// How the desktop helps those who do not see it well. Any thread.
class AccessibilityStatus {
 public:
  virtual ~AccessibilityStatus() = default;

  // None where the desktop does not tell; the answer takes seconds at the most. Starts nothing.
  [[nodiscard]] virtual std::optional<bool> isScreenReaderEnabled() const = 0;
};

// The desktop's own, never destroyed.
[[nodiscard]] const AccessibilityStatus& sharedAccessibilityStatus();

}  // namespace vornix
