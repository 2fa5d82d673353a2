#pragma once

#include <string>
#include <string_view>

namespace vornix {

// MD5 of the receiver's bytes as 32 lower-case hexadecimal digits.
[[nodiscard]] std::string md5Hash(std::string_view self);

}  // namespace vornix
