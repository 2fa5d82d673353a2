#include "foundation/NumberedCopySearch.h"

#include <cstddef>
#include <vector>

#include "platform/base/Text.h"
#include "platform/base/Utf8.h"
#include "platform/text/CaseMapping.h"

namespace vornix {
namespace {

// Equal to no character.
constexpr char32_t kIllFormed = 0xFFFFFFFF;

text::FewCharacters foldedSymbols(const text::DecodedCharacter& character) {
  if (character.wellFormed) return text::caseFolded(character.codePoint);
  return {{kIllFormed}, 1};
}

// Tells where spaces lead to a digit. Asked from left to right, it looks at every byte once.
class NumberFinder {
 public:
  explicit NumberFinder(std::string_view text) : text_(text) {}

  bool followsAt(std::size_t offset) {
    if (spacesEnd_ < offset) spacesEnd_ = offset;
    while (spacesEnd_ < text_.size() && text_[spacesEnd_] == ' ') ++spacesEnd_;
    return spacesEnd_ < text_.size() && text::isAsciiDigit(text_[spacesEnd_]);
  }

 private:
  std::string_view text_;
  std::size_t spacesEnd_ = 0;
};

}  // namespace

NumberedCopySearch::NumberedCopySearch(std::string_view name) {
  while (!name.empty()) {
    const auto character = text::decodeCharacter(name);
    for (const char32_t symbol : foldedSymbols(character)) name_.append(symbol);
    name.remove_prefix(character.length);
  }
}

bool NumberedCopySearch::isIn(std::string_view text) const {
  if (name_.empty()) return text.find_first_of("0123456789") != std::string_view::npos;
  NumberFinder number(text);
  // Of the latest symbols, which ones began a character: a match must not begin within one.
  std::vector<bool> begins(name_.size());
  std::size_t matched = 0;
  std::size_t seen = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    const auto character = text::decodeCharacter(text.substr(offset));
    offset += character.length;
    bool isFirst = true;
    for (const char32_t symbol : foldedSymbols(character)) {
      begins[seen++ % begins.size()] = isFirst;
      matched = name_.advanced(matched, symbol);
      isFirst = false;
    }
    const bool isMatch = matched == name_.size() && begins[seen % begins.size()];
    if (isMatch && number.followsAt(offset)) return true;
  }
  return false;
}

}  // namespace vornix
