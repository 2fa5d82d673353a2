#pragma once

#include <string>
#include <string_view>

#include "platform/base/Utf16.h"

namespace vornix {

// The UTF-16 units of `range`; empty when the range goes beyond the receiver's end. A range that
// cuts a surrogate pair takes its half as a lone surrogate.
[[nodiscard]] std::string substringWithRangeProtected(std::string_view self, NSRange range);

}  // namespace vornix
