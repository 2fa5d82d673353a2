#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/base/Utf8.h"
#include "platform/text/CanonicalSearch.h"
#include "platform/text/CharacterProperties.h"

// Canonical equivalence in the plainest way, to hold the fast one to.
namespace vornix::tests {

// None where a byte is ill-formed.
inline std::optional<std::u32string> canonicalForm(std::string_view text) {
  std::u32string form;
  while (!text.empty()) {
    const auto character = text::decodeCharacter(text);
    if (!character.wellFormed) return std::nullopt;
    for (const char32_t part : text::canonicalDecomposition(character.codePoint)) {
      form += part;
      for (std::size_t at = form.size() - 1; at > 0; --at) {
        const auto own = text::combiningClass(form[at]);
        if (own == 0 || text::combiningClass(form[at - 1]) <= own) break;
        std::swap(form[at], form[at - 1]);
      }
    }
    text.remove_prefix(character.length);
  }
  return form;
}

// 1 for leading consonants, 2 for vowels, 3 for trailing consonants, 0 for what is no Hangul
// letter.
inline int hangulKind(char32_t c) {
  if ((c >= 0x1100 && c < 0x1160) || (c >= 0xA960 && c <= 0xA97C)) return 1;
  if ((c >= 0x1160 && c < 0x11A8) || (c >= 0xD7B0 && c <= 0xD7C6)) return 2;
  if ((c >= 0x11A8 && c < 0x1200) || (c >= 0xD7CB && c <= 0xD7FB)) return 3;
  return 0;
}

inline bool isParted(const text::DecodedCharacter& before, const text::DecodedCharacter& after) {
  if (!before.wellFormed || !after.wellFormed) return true;
  if (text::isMark(after.codePoint)) return false;
  const auto parts = text::canonicalDecomposition(before.codePoint);
  const int last = hangulKind(parts.characters.at(parts.count - 1));
  const int first = hangulKind(text::canonicalDecomposition(after.codePoint).characters.front());
  const bool joined = last != 0 && (first == last || first == last + 1);
  return !joined;
}

// The first match of a pattern that is not empty, at or behind `from`.
inline std::optional<text::ByteRange> firstMatchByHand(std::string_view text,
                                                       std::string_view pattern, std::size_t from) {
  const auto wanted = canonicalForm(pattern);
  if (!wanted) return std::nullopt;
  std::vector<std::size_t> parts;
  for (std::size_t offset = 0; offset < text.size();) {
    const auto character = text::decodeCharacter(text.substr(offset));
    if (offset == 0) parts.push_back(0);
    offset += character.length;
    const bool isEnd = offset == text.size();
    if (isEnd || isParted(character, text::decodeCharacter(text.substr(offset)))) {
      parts.push_back(offset);
    }
  }
  for (std::size_t begin = 0; begin < parts.size(); ++begin) {
    if (parts[begin] < from) continue;
    for (std::size_t end = begin + 1; end < parts.size(); ++end) {
      const std::size_t length = parts[end] - parts[begin];
      const auto form = canonicalForm(text.substr(parts[begin], length));
      // What is longer, or ill-formed, stays so with every further part.
      if (!form || form->size() > wanted->size()) break;
      if (form == wanted) return text::ByteRange{parts[begin], length};
    }
  }
  return std::nullopt;
}

}  // namespace vornix::tests
