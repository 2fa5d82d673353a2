#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// What Unicode says about single characters. ASCII never loads a library; where there is none for
// the rest, that is said once and other characters count as plain ones. Any thread.
namespace vornix::text {

// What one character maps to.
struct FewCharacters {
  std::array<char32_t, 4> characters{};
  std::size_t count = 0;

  [[nodiscard]] const char32_t* begin() const { return characters.data(); }
  [[nodiscard]] const char32_t* end() const { return characters.data() + count; }
  // Not of a temporary, which a loop would outlive.
  [[nodiscard]] std::u32string_view view() const& { return {characters.data(), count}; }
  std::u32string_view view() const&& = delete;
};

// In full, Hangul syllables included; the character itself where there is nothing to take apart.
[[nodiscard]] FewCharacters canonicalDecomposition(char32_t character);
// 0 for a character that keeps its place in canonical order.
[[nodiscard]] std::uint8_t combiningClass(char32_t character);
// Of general category M: it belongs to the character before it.
[[nodiscard]] bool isMark(char32_t character);

}  // namespace vornix::text
