#pragma once

#include <optional>
#include <string>
#include <string_view>

// Texts with percent escapes for the bytes of their UTF-8 form, in linear time. What takes or gives
// a text answers none for one that is not well-formed, a lone surrogate included.
namespace vornix::text {

// The platform's older URL escaping: letters, digits and the characters !$&'()*+,-./:;=?@_~ stay,
// everything else (a percent sign too) becomes the upper-case escapes of its UTF-8 bytes.
[[nodiscard]] std::optional<std::string> addingPercentEscapes(std::string_view text);

// Letters, digits and the characters -._~ stay, which no URL gives a meaning; everything else is
// escaped.
[[nodiscard]] std::optional<std::string> addingPercentEscapesToAllButUnreserved(
    std::string_view text);

// Every escape, in either case, replaced by its byte, one level deep. None also when a percent sign
// is not followed by two hexadecimal digits, or when the bytes together are no well-formed UTF-8. A
// byte order mark at the very start of the result is dropped.
[[nodiscard]] std::optional<std::string> replacingPercentEscapes(std::string_view text);

// The same for bytes that need not be a text: a broken escape is all that gives none.
[[nodiscard]] std::optional<std::string> bytesOfPercentEscapes(std::string_view escaped);

}  // namespace vornix::text
