#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vornix {

// The MD5 digest (RFC 1321) of all `bytes`, embedded zeros included. Any thread.
[[nodiscard]] std::array<std::uint8_t, 16> md5Digest(std::string_view bytes);

}  // namespace vornix
