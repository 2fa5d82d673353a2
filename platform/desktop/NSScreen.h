#pragma once

#include <optional>

namespace vornix {

struct Size {
  double width = 0;
  double height = 0;
};

// The person's screens. Main thread.
class NSScreen {
 public:
  virtual ~NSScreen() = default;

  // Of the main screen, in pixels; none without one.
  [[nodiscard]] virtual std::optional<Size> mainScreenSize() const = 0;

  // Asks the display server once, when first used, and waits for it 2 s at most. Never destroyed.
  [[nodiscard]] static const NSScreen& screens();
};

}  // namespace vornix
