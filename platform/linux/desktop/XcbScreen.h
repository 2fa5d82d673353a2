#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/desktop/NSScreen.h"

namespace vornix {

// Asks the X display ("DISPLAY" as the environment has it) for the size of its primary output's
// mode; of its first lit output where none is primary; of the whole screen where it cannot tell
// outputs apart. None when there is no such display, or when it does not answer in time.
[[nodiscard]] std::optional<Size> xcbScreenSize(const std::string& display,
                                                std::chrono::milliseconds patience);

}  // namespace vornix
