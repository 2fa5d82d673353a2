#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// A property list in its text form: words, quoted texts, ( arrays ), { key = value; } and
// < hexadecimal data >, with comments. UTF-8. None when the text is anything else as a whole.
[[nodiscard]] std::optional<Value> parseTextPropertyList(std::string_view text);

// Reads the pieces of that form one after the other. Never reads beyond the text, never nests
// deeper than a fixed bound.
class TextPropertyListReader {
 public:
  explicit TextPropertyListReader(std::string_view text) : text_(text) {}

  // Over white space and comments.
  void skipBlanks();
  [[nodiscard]] bool isAtEnd() const { return position_ >= text_.size(); }
  // Consumes the character if it stands next, blanks before it included.
  bool take(char character);
  // A word or a quoted text; none, and nothing but blanks consumed, when neither stands next. An
  // unterminated quoted text ends with the whole.
  std::optional<std::string> readText();
  std::optional<Value> readValue(int depth = 0);
  // Behind the next such character, over everything else; to the end when there is none.
  void skipBehind(char character);

 private:
  std::string readQuoted(char quote);
  void readEscape(std::string& result);
  char32_t readDigits(int maximum, int base);
  std::optional<Value> readArray(int depth);
  std::optional<Value> readDictionary(int depth);
  std::optional<Value> readData();

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace vornix
