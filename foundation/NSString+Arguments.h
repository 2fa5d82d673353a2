#pragma once

#include <string>
#include <string_view>

namespace vornix {

// The receiver, a list separated by colons despite the name, without every entry equal to `string`,
// the other entries without white space at their ends. Empty entries stay unless `string` is empty.
[[nodiscard]] std::string stringByRemovingSemicolonSeparatedString(std::string_view self,
                                                                   std::string_view string);

}  // namespace vornix
