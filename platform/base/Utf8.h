#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 seen as code points and UTF-16 units. A lone surrogate in its three-byte form counts as
// that surrogate; any other ill-formed byte counts as one unit of its own.
namespace vornix::text {

struct DecodedCharacter {
  char32_t codePoint = 0;
  // Bytes consumed, at least 1.
  std::size_t length = 1;
  // False for an ill-formed byte; `codePoint` is then the byte itself.
  bool wellFormed = true;
};

// The character at the start of `bytes`, which must not be empty.
[[nodiscard]] DecodedCharacter decodeCharacter(std::string_view bytes);

void appendCharacter(std::string& text, char32_t codePoint);

[[nodiscard]] std::u16string utf16Units(std::string_view text);

// Bytes below 0x80 only; true for the empty text.
[[nodiscard]] bool isAscii(std::string_view text);
// True when some byte belongs to no character. Surrogates in their three-byte form are characters.
[[nodiscard]] bool hasIllFormedByte(std::string_view text);

}  // namespace vornix::text
