#include "platform/text/CharacterProperties.h"

#include <string>

#include "platform/linux/text/Icu.h"
#include "platform/linux/text/IcuUnits.h"

namespace vornix::text {

FewCharacters canonicalDecomposition(char32_t character) {
  const IcuCharacters* icu = character < 0x80 ? nullptr : IcuCharacters::shared();
  if (icu == nullptr) return oneCharacter(character);
  std::array<char16_t, 16> units{};
  UErrorCode error = U_ZERO_ERROR;
  const auto length = icu->decomposition(icu->normalizer, static_cast<UChar32>(character),
                                         units.data(), units.size(), &error);
  if (U_FAILURE(error) || length <= 0) return oneCharacter(character);
  return charactersOfUnits({units.data(), static_cast<std::size_t>(length)});
}

std::uint8_t combiningClass(char32_t character) {
  const IcuCharacters* icu = character < 0x80 ? nullptr : IcuCharacters::shared();
  if (icu == nullptr) return 0;
  return icu->combiningClass(icu->normalizer, static_cast<UChar32>(character));
}

bool isMark(char32_t character) {
  const IcuCharacters* icu = character < 0x80 ? nullptr : IcuCharacters::shared();
  if (icu == nullptr) return false;
  const auto category = U_MASK(icu->category(static_cast<UChar32>(character)));
  return (category & U_GC_M_MASK) != 0;
}

}  // namespace vornix::text
