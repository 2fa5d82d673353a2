#pragma once

#include <string>

namespace vornix {

// Whether a list of attribute names, each with a zero byte at its end, holds the mark of what the
// system itself protects, "com.apple.rootless". Names that the mark starts with count as well. The
// scan ends at an empty name, and once no more bytes are left behind a name than that name has, so
// a shorter name behind it stays unseen. What ends without a zero byte loses its last byte.
[[nodiscard]] bool holdsRootlessAttribute(std::string names);

}  // namespace vornix
