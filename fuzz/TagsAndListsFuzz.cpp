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

void checkList(std::string_view list, std::string_view entry) {
  std::vector<std::string> kept;
  for (const std::string& piece : text::split(list, ":")) {
    const std::string trimmed = trimWhiteSpace(piece);
    if (trimmed != entry) kept.push_back(trimmed);
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
