#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Text primitives that every layer may use. Texts are UTF-8; ill-formed bytes pass through.
namespace vornix::text {

// The product's name, as hits, log files and log lines carry it.
inline constexpr std::string_view productName = "Vornix";

// Without the platform's white space and line ends at both ends (Unicode's, and U+200B).
[[nodiscard]] std::string_view trim(std::string_view text);

// Leading white space, one optional sign, ASCII digits; stops at anything else; saturates.
// No digits give 0.
[[nodiscard]] std::int64_t integerValue(std::string_view text);
// The leading decimal number; 0 without one.
[[nodiscard]] double doubleValue(std::string_view text);
// True when, after white space, a sign and zeros, the next character is one of "YyTt1-9".
[[nodiscard]] bool boolValue(std::string_view text);

[[nodiscard]] constexpr bool isAsciiDigit(char c) {
  return c >= '0' && c <= '9';
}
[[nodiscard]] constexpr bool isAsciiLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
[[nodiscard]] constexpr bool isAsciiLetterOrDigit(char c) {
  return isAsciiLetter(c) || isAsciiDigit(c);
}

// ASCII letters only; other bytes stay.
[[nodiscard]] std::string asciiLowercase(std::string_view text);
[[nodiscard]] std::string asciiUppercase(std::string_view text);
[[nodiscard]] bool asciiEqualIgnoringCase(std::string_view left, std::string_view right);

[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view target,
                                     std::string_view replacement);
// Keeps empty pieces; the empty text gives one empty piece.
[[nodiscard]] std::vector<std::string> split(std::string_view text, std::string_view separator);
[[nodiscard]] std::string join(const std::vector<std::string>& pieces, std::string_view separator);

// True for well-formed UTF-8 (surrogates and overlong forms are ill-formed).
[[nodiscard]] bool isValidUtf8(std::string_view bytes);

}  // namespace vornix::text
