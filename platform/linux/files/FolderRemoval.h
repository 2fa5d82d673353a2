#pragma once

#include <string>
#include <string_view>

namespace vornix {

// Removes an item, a folder with all that is in it. Goes from descriptor to descriptor, so that
// neither the length of paths nor a folder that is swapped for a link meanwhile matters. Nothing in
// another volume is touched: EBUSY where one is mounted below the item. The first failure ends it;
// what others remove meanwhile is none. Answers 0 or the system's error number.
[[nodiscard]] int removeItem(std::string_view path);
// The same for an item of an open folder.
[[nodiscard]] int removeItemIn(int folder, const std::string& name);

}  // namespace vornix
