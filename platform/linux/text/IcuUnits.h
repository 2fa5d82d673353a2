#pragma once

#include <unicode/utf16.h>

#include <string_view>

#include "platform/text/CharacterProperties.h"

namespace vornix::text {

[[nodiscard]] inline FewCharacters oneCharacter(char32_t character) {
  return {{character}, 1};
}

// The characters that the units stand for, as many as there is room for.
[[nodiscard]] inline FewCharacters charactersOfUnits(std::u16string_view units) {
  FewCharacters few;
  for (std::size_t index = 0; index < units.size() && few.count < few.characters.size();) {
    UChar32 character = 0;
    U16_NEXT(units.data(), index, units.size(), character);
    few.characters[few.count++] = static_cast<char32_t>(character);
  }
  return few;
}

}  // namespace vornix::text
