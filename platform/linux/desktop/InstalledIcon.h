#pragma once

#include <string>

namespace vornix {

// The icon file that was installed beside the running program for the application with this
// identifier; empty when there is none. Servers find it whatever folders they search.
[[nodiscard]] std::string installedIcon(const std::string& identifier);

}  // namespace vornix
