#pragma once

#include <string>
#include <string_view>

namespace vornix::tools {

// The text as a JSON string, with its quotes. It must be well-formed UTF-8.
[[nodiscard]] std::string jsonString(std::string_view text);

// A path as a JSON string: as it is where it is well-formed UTF-8, otherwise as a "file://"
// address. One that is neither absolute nor well-formed has every byte that belongs to no character
// replaced by U+FFFD.
[[nodiscard]] std::string jsonPath(std::string_view path);

}  // namespace vornix::tools
