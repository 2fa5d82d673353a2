#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// The receiver with the characters escaped that may not stand in a URL, and with "%26" for every
// "&"; other reserved characters stay. None for a text that is not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> vnx_stringEncodedAsURL(std::string_view self);

// The receiver with everything escaped but letters, digits and the characters -._~. None for a text
// that is not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> stringByEncodingURLEscapes(std::string_view self);

// The receiver with a space for every "+", and then with every percent escape replaced by what it
// stands for. None for malformed escapes and for what is not well-formed UTF-8, before or after.
[[nodiscard]] std::optional<std::string> stringByDecodingURLEscapes(std::string_view self);

}  // namespace vornix
