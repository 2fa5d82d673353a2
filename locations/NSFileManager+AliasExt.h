#pragma once

#include <string>
#include <string_view>

#include "platform/files/NSFileManager.h"

namespace vornix {

// What a symbolic link at the path holds, as it stands and one level deep, provided that something
// exists there; a relative one is seen from the current folder. For anything else, and where
// nothing exists, the path itself; what was amiss is logged.
[[nodiscard]] std::string resolvedOriginalPath(const NSFileManager& self, std::string_view path);

}  // namespace vornix
