#pragma once

#include <string>

namespace vornix {

// Sets or clears the flag that keeps a file or folder from being changed, for root only. Links and
// special files cannot have it, and are never opened; neither can anything on file systems without
// such flags: clearing it there does nothing, setting it is EOPNOTSUPP. Answers 0 or the system's
// error number.
[[nodiscard]] int setImmutableFlag(const std::string& path, bool isImmutable);

}  // namespace vornix
