#pragma once

#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// The texts of a ".strings" file in its text form: "key" = "value"; with comments, in UTF-8 or,
// with a byte order mark, UTF-16. A key without a value stands for itself; what is no such line is
// passed over up to the next semicolon.
[[nodiscard]] Dictionary parseStringsFile(std::string_view bytes);

}  // namespace vornix
