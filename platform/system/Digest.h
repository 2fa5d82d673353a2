#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vornix {

[[nodiscard]] std::array<std::uint8_t, 16> md5Digest(std::string_view bytes);

}  // namespace vornix
