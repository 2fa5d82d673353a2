#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Counting in UTF-16 units, as the platform's strings do, on texts that stay UTF-8. A lone
// surrogate and any ill-formed byte count one unit each.
namespace vornix {

// A part of a text, in UTF-16 units.
struct NSRange {
  std::uint64_t location = 0;
  std::uint64_t length = 0;

  friend bool operator==(const NSRange&, const NSRange&) = default;
};

// The location of a range that stands for "nothing found".
inline constexpr std::uint64_t NSNotFound = 0x7FFFFFFFFFFFFFFF;

namespace text {

[[nodiscard]] std::size_t utf16Length(std::string_view text);

// The units of `range`; none where the text is shorter. A range that cuts a surrogate pair takes
// its half as a lone surrogate in three-byte form.
[[nodiscard]] std::optional<std::string> substringOfUnits(std::string_view text, NSRange range);

void appendUnits(std::u16string& units, char32_t character);

// A unit that is half of no pair becomes a lone surrogate in three-byte form.
[[nodiscard]] std::string textOfUnits(std::u16string_view units);

}  // namespace text
}  // namespace vornix
