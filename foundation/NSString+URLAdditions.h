#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// The receiver with the characters escaped that may not stand in a URL, and with "%26" for every
// "&"; other reserved characters stay. None for a text that is not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> vnx_stringEncodedAsURL(std::string_view self);

}  // namespace vornix
