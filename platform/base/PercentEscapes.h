#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix::text {

// The platform's older URL escaping: letters, digits and the characters !$&'()*+,-./:;=?@_~ stay,
// everything else (a percent sign too) becomes the upper-case escapes of its UTF-8 bytes. None for
// a text that is not well-formed, a lone surrogate included.
[[nodiscard]] std::optional<std::string> addingPercentEscapes(std::string_view text);

}  // namespace vornix::text
