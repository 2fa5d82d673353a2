#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/base/Utf8.h"

namespace vornix::text {

// Takes a text apart into composed sequences: a character with the marks that follow it, or the
// letters of one Hangul syllable. An ill-formed byte stands alone. Linear, whatever the text; holds
// one sequence at a time.
class ComposedSequences {
 public:
  // Characters of a sequence are kept only where there are at most `longest` of them.
  ComposedSequences(std::string_view text, std::size_t from, std::size_t longest)
      : text_(text), longest_(longest), begin_(from), end_(from) {}

  // On to the next sequence; false at the end of the text.
  bool next();

  // The bytes of the current one.
  [[nodiscard]] std::size_t begin() const { return begin_; }
  [[nodiscard]] std::size_t end() const { return end_; }
  // Its characters taken apart and in canonical order, so that equal views mean canonically
  // equivalent texts. Empty for an ill-formed byte and for a sequence that is too long.
  [[nodiscard]] std::u32string_view characters() const { return characters_; }

 private:
  [[nodiscard]] DecodedCharacter characterAt(std::size_t offset) const;
  void take(char32_t character);

  std::string_view text_;
  std::size_t longest_;
  std::size_t begin_;
  std::size_t end_;
  std::u32string characters_{};
  bool tooLong_ = false;
};

}  // namespace vornix::text
