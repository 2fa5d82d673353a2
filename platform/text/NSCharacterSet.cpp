#include "platform/text/NSCharacterSet.h"

#include <algorithm>

#include "platform/base/DecimalDigit.h"
#include "platform/base/WhiteSpace.h"

namespace vornix {

NSCharacterSet NSCharacterSet::whitespaceAndNewlineCharacterSet() {
  return NSCharacterSet(text::isWhiteSpaceOrNewline);
}

NSCharacterSet NSCharacterSet::whitespaceCharacterSet() {
  return NSCharacterSet(
      [](char32_t c) { return text::isWhiteSpaceOrNewline(c) && !text::isNewline(c); });
}

NSCharacterSet NSCharacterSet::newlineCharacterSet() {
  return NSCharacterSet(text::isNewline);
}

NSCharacterSet NSCharacterSet::decimalDigitCharacterSet() {
  return NSCharacterSet(text::isDecimalDigit);
}

NSCharacterSet NSCharacterSet::characterSetWithCharactersInString(std::string_view characters) {
  NSCharacterSet set(nullptr);
  while (!characters.empty()) {
    const auto character = text::decodeCharacter(characters);
    if (character.wellFormed) set.characters_ += character.codePoint;
    characters.remove_prefix(character.length);
  }
  std::ranges::sort(set.characters_);
  return set;
}

NSCharacterSet NSCharacterSet::invertedSet() const {
  NSCharacterSet inverted = *this;
  inverted.inverted_ = !inverted_;
  return inverted;
}

bool NSCharacterSet::characterIsMember(char32_t character) const {
  const bool listed =
      rule_ != nullptr ? rule_(character) : std::ranges::binary_search(characters_, character);
  return listed != inverted_;
}

}  // namespace vornix
