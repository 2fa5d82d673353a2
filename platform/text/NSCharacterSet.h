#pragma once

#include <string>
#include <string_view>

#include "platform/base/Utf8.h"

namespace vornix {

// A set of characters, each one code point; a lone surrogate is one, too. A value: cheap to copy
// when it is one of the platform's own.
class NSCharacterSet {
 public:
  [[nodiscard]] static NSCharacterSet whitespaceAndNewlineCharacterSet();
  [[nodiscard]] static NSCharacterSet whitespaceCharacterSet();
  [[nodiscard]] static NSCharacterSet newlineCharacterSet();
  // The decimal digits of every script.
  [[nodiscard]] static NSCharacterSet decimalDigitCharacterSet();
  // Ill-formed bytes of `characters` are in no set.
  [[nodiscard]] static NSCharacterSet characterSetWithCharactersInString(
      std::string_view characters);

  // Every character that is not in this one.
  [[nodiscard]] NSCharacterSet invertedSet() const;

  [[nodiscard]] bool characterIsMember(char32_t character) const;
  // The same for what was read from a text. An ill-formed byte is in no set, inverted or not.
  [[nodiscard]] bool characterIsMember(const text::DecodedCharacter& character) const {
    return character.wellFormed && characterIsMember(character.codePoint);
  }

 private:
  using Rule = bool (*)(char32_t);

  explicit NSCharacterSet(Rule rule) : rule_(rule) {}

  // Null when the characters are listed.
  Rule rule_ = nullptr;
  // In ascending order.
  std::u32string characters_{};
  bool inverted_ = false;
};

}  // namespace vornix
