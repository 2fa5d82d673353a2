#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "platform/desktop/NSScreen.h"

namespace vornix {

// Where a screen's size is looked up.
struct ScreenSources {
  // As the environment's DISPLAY; none where it is not set.
  std::optional<std::string> display;
  // Tells the kernel's displays.
  std::string kernelFolder = "/sys/class/drm";
  // How long the display may take to answer before the kernel is asked.
  std::chrono::milliseconds patience = std::chrono::milliseconds(2000);
};

// Asks once, when first used.
[[nodiscard]] std::unique_ptr<NSScreen> makeLinuxScreen(ScreenSources sources);

}  // namespace vornix
