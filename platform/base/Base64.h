#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

// Base64 with the standard alphabet. Linear in time; any thread.
namespace vornix::text {

// Padded with "=", in one line.
[[nodiscard]] std::string base64Encode(std::span<const std::byte> data);

// Never fails. Space, LF and CR are skipped; the first "=" ends the text; padding may be missing
// and spare bits may be set; a single character left over yields nothing. Any other byte stands for
// the value that was last stored at its place in a group of four, 0 at first.
[[nodiscard]] Data base64Decode(std::string_view text);

}  // namespace vornix::text
