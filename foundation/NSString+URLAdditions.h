#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// With `withString` in the place of every `target`, from the left and without looking into what was
// inserted. Canonically equivalent texts count as equal, and nothing is replaced within a composed
// sequence. An empty target stands nowhere.
[[nodiscard]] std::string stringByReplacingOccurrencesOfString(std::string_view self,
                                                               std::string_view target,
                                                               std::string_view withString);

// "key=value&key=value" in the dictionary's order, keys and values escaped but for "&", "=" and
// "+", values as "%@" prints them. A key or value that is not well-formed becomes "(null)".
[[nodiscard]] std::string URLParamsStringWithDictionary(const Dictionary& dictionary);

// The receiver with everything escaped but letters, digits and the characters -._~. None for a text
// that is not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> stringByEncodingURLEscapes(std::string_view self);

// The receiver with a space for every "+", and then with every percent escape replaced by what it
// stands for. None for malformed escapes and for what is not well-formed UTF-8, before or after.
[[nodiscard]] std::optional<std::string> stringByDecodingURLEscapes(std::string_view self);

}  // namespace vornix
