#pragma once

#include <optional>
#include <string>

#include "platform/desktop/NSScreen.h"

namespace vornix {

// The preferred mode of the first display that the kernel says is connected, one that shows
// something before one that does not. `folder` is "/sys/class/drm" but in tests.
[[nodiscard]] std::optional<Size> kernelDisplaySize(const std::string& folder);

}  // namespace vornix
