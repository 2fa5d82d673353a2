#include "foundation/ResourceNameComparison.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_set>

#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+Regex.h"
#include "foundation/NumberedCopyExpressions.h"
#include "foundation/NumberedCopySearch.h"
#include "platform/base/Text.h"
#include "platform/base/Utf16.h"
#include "platform/base/Utf8.h"
#include "platform/text/ByteSearch.h"
#include "platform/text/CaseMapping.h"

namespace vornix {
namespace {

// Comparing each with each takes at most so many steps; longer texts are worth preparing.
constexpr std::size_t kFewSteps = std::size_t{1} << 20U;

bool takesFewSteps(std::string_view one, std::string_view other) {
  return one.empty() || other.size() <= kFewSteps / one.size();
}

// The words of a text, one after the other.
class Words {
 public:
  Words(std::string_view text, std::string_view separator)
      : rest_(text), separator_(text::hasIllFormedByte(separator) ? "" : separator) {}

  std::optional<std::string_view> next() {
    if (!rest_) return std::nullopt;
    const std::size_t end =
        separator_.empty() ? std::string_view::npos : text::findBytes(*rest_, separator_);
    const std::string_view word = rest_->substr(0, end);
    if (end == std::string_view::npos) {
      rest_.reset();
    } else {
      rest_->remove_prefix(end + separator_.size());
    }
    return word;
  }

 private:
  std::optional<std::string_view> rest_;
  std::string_view separator_;
};

bool holdsAsciiWord(std::string_view text, std::string_view word, std::string_view separator) {
  Words words(text, separator);
  while (const auto candidate = words.next()) {
    if (text::asciiEqualIgnoringCase(*candidate, word)) return true;
  }
  return false;
}

bool holdsEveryAsciiWord(std::string_view other, std::string_view name,
                         std::string_view separator) {
  Words words(name, separator);
  while (const auto word = words.next()) {
    if (!holdsAsciiWord(other, *word, separator)) return false;
  }
  return true;
}

using WordSet = std::unordered_set<std::string_view>;

WordSet wordSet(std::string_view text, std::string_view separator) {
  WordSet set;
  for (Words words(text, separator); const auto word = words.next();) set.insert(*word);
  return set;
}

bool areAllIn(const WordSet& set, Words words) {
  while (const auto word = words.next()) {
    if (!set.contains(*word)) return false;
  }
  return true;
}

// Whether every word of the set is among the others.
bool missesNone(WordSet set, Words words) {
  while (const auto word = words.next()) {
    set.erase(*word);
    if (set.empty()) return true;
  }
  return false;
}

bool isPlain(std::string_view name) {
  return name.find_first_of(R"(\^$.|?*+()[]{})") == std::string_view::npos &&
         !text::hasIllFormedByte(name);
}

bool hasMoreCharactersThan(std::string_view text, std::size_t limit) {
  constexpr std::size_t longestCharacter = 4;
  if (text.size() <= limit) return false;
  if (text.size() / longestCharacter > limit) return true;
  for (; !text.empty(); --limit) {
    if (limit == 0) return true;
    text.remove_prefix(text::decodeCharacter(text).length);
  }
  return false;
}

// Without regard to case, a character counts at least as one and at most as three.
bool fitsInto(std::string_view name, std::string_view other) {
  constexpr std::size_t mostFolded = 3;
  if (text::isAscii(name) && text::isAscii(other)) return name.size() < other.size();
  return !hasMoreCharactersThan(name, text::utf16Length(other) * mostFolded);
}

bool holdsNumberedAsciiCopy(std::string_view other, std::string_view name) {
  bool isNumber = false;
  for (std::size_t end = other.size(); end-- > name.size();) {
    const char c = other[end];
    isNumber = text::isAsciiDigit(c) || (c == ' ' && isNumber);
    if (!isNumber) continue;
    const auto candidate = other.substr(end - name.size(), name.size());
    if (text::asciiEqualIgnoringCase(candidate, name)) return true;
  }
  return false;
}

}  // namespace

bool holdsEveryWordGenerally(std::string_view other, std::string_view name,
                             std::string_view separator) {
  const std::string lowerOther = text::lowercase(other);
  const std::string lowerName = text::lowercase(name);
  return lowerName.size() < lowerOther.size()
             ? missesNone(wordSet(lowerName, separator), Words(lowerOther, separator))
             : areAllIn(wordSet(lowerOther, separator), Words(lowerName, separator));
}

bool holdsEveryWord(std::string_view other, std::string_view name, std::string_view separator) {
  // A separator with letters would be looked for in texts that have changed their case.
  const bool isShort = takesFewSteps(name, other) && text::isAscii(name) && text::isAscii(other) &&
                       text::isAscii(separator) &&
                       std::ranges::none_of(separator, text::isAsciiLetter);
  return isShort ? holdsEveryAsciiWord(other, name, separator)
                 : holdsEveryWordGenerally(other, name, separator);
}

bool holdsNumberedCopyGenerally(std::string_view other, std::string_view name) {
  if (isPlain(name)) return fitsInto(name, other) && NumberedCopySearch(name).isIn(other);
  const auto expression = numberedCopyExpression(name);
  return expression != nullptr && isMatchedByRegex(other, *expression);
}

bool holdsNumberedCopy(std::string_view other, std::string_view name) {
  const bool isShort =
      takesFewSteps(name, other) && text::isAscii(name) && text::isAscii(other) && isPlain(name);
  return isShort ? holdsNumberedAsciiCopy(other, name) : holdsNumberedCopyGenerally(other, name);
}

int compareApplicationResourceNameByWords(std::string_view self, std::string_view other,
                                          std::string_view withSeparator) {
  constexpr int same = 0;
  constexpr int ascending = -1;
  const bool matches =
      holdsEveryWord(other, self, withSeparator) && !holdsNumberedCopy(other, self);
  return matches ? same : ascending;
}

}  // namespace vornix
