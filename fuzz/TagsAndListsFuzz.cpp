#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/NSString+Arguments.h"
#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+ProtectedSubstring.h"
#include "fuzz/support/Halves.h"
#include "fuzz/support/Require.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

using namespace vornix;

namespace {

void checkTags(std::string_view text) {
  const std::string stripped = stripHTML(text);
  fuzz::require(stripped.find_first_of("<>") == std::string::npos);
  fuzz::require(stripped.size() <= text.size());
  fuzz::require(stripHTML(stripped) == stripped);
}

// Without white space at both ends, one character after the other.
std::string_view plainlyTrimmed(std::string_view text) {
  static constexpr std::array<std::string_view, 26> whiteSpace{
      "\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\u0085", "\u00A0", "\u1680",
      "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
      "\u2009", "\u200A", "\u200B", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};
  for (bool isTrimmed = false; !isTrimmed;) {
    isTrimmed = true;
    for (const std::string_view space : whiteSpace) {
      const bool isAtStart = text.starts_with(space);
      if (isAtStart) text.remove_prefix(space.size());
      const bool isAtEnd = text.ends_with(space);
      if (isAtEnd) text.remove_suffix(space.size());
      isTrimmed = isTrimmed && !isAtStart && !isAtEnd;
    }
  }
  return text;
}

void checkList(std::string_view list, std::string_view entry) {
  std::vector<std::string> kept;
  for (const std::string& piece : text::split(list, ":")) {
    const std::string_view trimmed = plainlyTrimmed(piece);
    if (trimmed != entry) kept.emplace_back(trimmed);
  }
  fuzz::require(stringByRemovingSemicolonSeparatedString(list, entry) == text::join(kept, ":"));
}

void checkSubstitution(std::string_view text, std::string_view characters) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString(characters);
  const std::string without = stringWithSubstitute(text, "", set);
  const std::string only = stringWithSubstitute(text, "", set.invertedSet());
  fuzz::require(without.size() <= text.size());
  fuzz::require(only.size() <= text.size());
  if (text::hasIllFormedByte(text)) return;
  fuzz::require(without.size() + only.size() == text.size());
}

void checkUnits(std::string_view text) {
  const std::u16string units = text::utf16Units(text);
  fuzz::require(text::utf16Length(text) == units.size());
  const NSRange half{units.size() / 3, units.size() / 2};
  const std::string taken = substringWithRangeProtected(text, half);
  fuzz::require(text::utf16Units(taken) == units.substr(half.location, half.length));
}

}  // namespace

// One pass over a text answers what its parts answer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto [entry, text] = fuzz::halvesOf(data, size);
  fuzz::require(trimWhiteSpace(text) == plainlyTrimmed(text));
  fuzz::require(stringIsEmpty(text) == plainlyTrimmed(text).empty());
  checkTags(text);
  checkList(text, entry);
  checkSubstitution(text, entry);
  checkUnits(text);
  const std::string spaceless = stringByRemovingSpaces(text);
  fuzz::require(stringByRemovingSpaces(spaceless) == spaceless);
  static_cast<void>(ellipsizeAfterNWords(text, static_cast<std::int32_t>(entry.size())));
  static_cast<void>(isNumeric(text));
  static_cast<void>(stringWithCapitalizedFirstLetter(text));
  return 0;
}
