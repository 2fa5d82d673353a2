#pragma once

#include <string>

namespace vornix {

// Removes an item, a folder with all that is in it. Goes from descriptor to descriptor, so that
// neither the length of paths nor a folder that is swapped for a link meanwhile matters, and keeps
// two of them open, however deep it goes. Answers 0 or the system's error number.
[[nodiscard]] int removeItem(const std::string& path);

}  // namespace vornix
