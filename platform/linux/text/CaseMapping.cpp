#include "platform/text/CaseMapping.h"

#include <array>
#include <limits>
#include <memory>

#include "platform/base/Text.h"
#include "platform/base/Utf8.h"
#include "platform/linux/text/Icu.h"
#include "platform/linux/text/IcuUnits.h"

namespace vornix::text {
namespace {

// No mapping makes a text more than half as long again, and ICU counts in 32 bits.
constexpr std::size_t kLongestPiece = std::numeric_limits<std::int32_t>::max() / 2;

bool isMappable(const DecodedCharacter& character) {
  const bool surrogate = character.codePoint >= 0xD800 && character.codePoint < 0xE000;
  return character.wellFormed && !surrogate;
}

// How much of the front of `text` ICU can take as it is: no ill-formed byte, no surrogate.
std::size_t mappableLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && length < kLongestPiece) {
    const DecodedCharacter character = decodeCharacter(text.substr(length));
    if (!isMappable(character)) break;
    length += character.length;
  }
  return length;
}

void appendLowercase(std::string& result, std::string_view piece, const IcuCharacters& icu) {
  const std::size_t before = result.size();
  const std::size_t room = piece.size() + piece.size() / 2 + 8;
  result.resize(before + room);
  UErrorCode error = U_ZERO_ERROR;
  const auto length =
      icu.toLower(icu.lowerMap, result.data() + before, static_cast<std::int32_t>(room),
                  piece.data(), static_cast<std::int32_t>(piece.size()), &error);
  const bool mapped = U_SUCCESS(error);
  result.resize(before + (mapped ? static_cast<std::size_t>(length) : 0));
  if (!mapped) result += asciiLowercase(piece);
}

std::u16string unitsOf(char32_t character) {
  std::string text;
  appendCharacter(text, character);
  return utf16Units(text);
}

// `map` writes the mapping of the units into the buffer and answers its length.
template <typename Map>
FewCharacters mapped(char32_t character, Map map) {
  const std::u16string units = unitsOf(character);
  std::array<char16_t, 16> buffer{};
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length = map(units, buffer, &error);
  if (U_FAILURE(error)) return oneCharacter(character);
  return charactersOfUnits({buffer.data(), static_cast<std::size_t>(length)});
}

using CaseMap = std::unique_ptr<UCaseMap, decltype(&ucasemap_close)>;

// A map for titles changes while it is used, so each use has its own. The whole text counts as one
// word, which spares the tables of word breaks.
FewCharacters titlecaseWith(const IcuCharacters& icu, char32_t character) {
  return mapped(character, [&icu](const auto& units, auto& buffer, UErrorCode* error) {
    const auto options = U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_BREAK_ADJUSTMENT;
    const CaseMap map(icu.openCaseMap("", options, error), icu.closeCaseMap);
    return icu.toTitle(map.get(), buffer.data(), static_cast<std::int32_t>(buffer.size()),
                       units.data(), static_cast<std::int32_t>(units.size()), error);
  });
}

std::string textOf(const FewCharacters& few) {
  std::string text;
  for (const char32_t character : few) appendCharacter(text, character);
  return text;
}

}  // namespace

std::string lowercase(std::string_view text) {
  const IcuCharacters* icu = isAscii(text) ? nullptr : IcuCharacters::shared();
  if (icu == nullptr) return asciiLowercase(text);
  std::string result;
  while (!text.empty()) {
    const std::size_t mappable = mappableLength(text);
    if (mappable > 0) appendLowercase(result, text.substr(0, mappable), *icu);
    text.remove_prefix(mappable);
    while (!text.empty() && !isMappable(decodeCharacter(text))) {
      const std::size_t kept = decodeCharacter(text).length;
      result.append(text.substr(0, kept));
      text.remove_prefix(kept);
    }
  }
  return result;
}

std::string titlecase(char32_t character) {
  const IcuCharacters* icu = character < 0x80 ? nullptr : IcuCharacters::shared();
  if (icu != nullptr) return textOf(titlecaseWith(*icu, character));
  return asciiUppercase(textOf(oneCharacter(character)));
}

FewCharacters caseFolded(char32_t character) {
  const bool isCapital = character >= U'A' && character <= U'Z';
  if (isCapital) return oneCharacter(character + (U'a' - U'A'));
  const IcuCharacters* icu = character < 0x80 ? nullptr : IcuCharacters::shared();
  if (icu == nullptr) return oneCharacter(character);
  return mapped(character, [icu](const auto& units, auto& buffer, UErrorCode* error) {
    return icu->foldString(buffer.data(), static_cast<std::int32_t>(buffer.size()), units.data(),
                           static_cast<std::int32_t>(units.size()), U_FOLD_CASE_DEFAULT, error);
  });
}

}  // namespace vornix::text
