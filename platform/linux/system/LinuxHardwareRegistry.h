#pragma once

#include <memory>
#include <string>

#include "platform/system/HardwareRegistry.h"

namespace vornix {

// Reads the kernel's and the system's files below `root`; "" for the machine's own.
[[nodiscard]] std::unique_ptr<HardwareRegistry> makeLinuxHardwareRegistry(std::string root);

}  // namespace vornix
