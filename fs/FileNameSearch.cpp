#include "fs/FileNameSearch.h"

#include <array>

#include "foundation/ResourceNameComparison.h"
#include "platform/base/PathText.h"
#include "platform/base/Utf8.h"
#include "platform/text/CanonicalSearch.h"
#include "platform/text/CaseMapping.h"

namespace vornix {
namespace {

constexpr std::string_view kSeparator = " ";
constexpr std::size_t kUsualLength = 256;

std::string_view longestWord(std::string_view text) {
  std::string_view longest;
  while (true) {
    const std::size_t end = text.find(kSeparator);
    const std::string_view word = text.substr(0, end);
    if (word.size() > longest.size()) longest = word;
    if (end == std::string_view::npos) return longest;
    text.remove_prefix(end + kSeparator.size());
  }
}

}  // namespace

FileNameSearch::FileNameSearch(std::string_view name, bool matchByWords)
    : name_(text::lowercase(name)),
      part_(matchByWords ? longestWord(name_) : name_),
      matchByWords_(matchByWords),
      isAscii_(text::isAscii(name_)) {}

FileNameSearch::Answer FileNameSearch::matches(std::string_view itemName) const {
  if (!mayMatch(itemName)) return Answer::no;
  const std::string shortName = text::deletingPathExtension(itemName);
  const bool whole = matches(itemName, text::lowercase(itemName));
  if (shortName == itemName) return whole ? Answer::yes : Answer::no;
  if (whole != matches(itemName, text::lowercase(shortName))) return Answer::dependsOnCandidate;
  return whole ? Answer::yes : Answer::no;
}

bool FileNameSearch::matches(std::string_view itemName, std::string_view candidate) const {
  const bool hasName = matchByWords_ ? holdsEveryWord(candidate, name_, kSeparator)
                                     : text::containsCanonically(text::lowercase(itemName), name_);
  return hasName && !holdsNumberedCopy(candidate, name_);
}

bool FileNameSearch::mayMatch(std::string_view itemName) const {
  std::array<char, kUsualLength> lowered;
  if (!isAscii_ || itemName.size() > lowered.size()) return true;
  unsigned char allBits = 0;
  for (std::size_t index = 0; index < itemName.size(); ++index) {
    const char c = itemName[index];
    allBits |= static_cast<unsigned char>(c);
    lowered[index] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  // Other characters may have ASCII ones in lower case.
  if (allBits >= 0x80) return true;
  return std::string_view(lowered.data(), itemName.size()).find(part_) != std::string_view::npos;
}

}  // namespace vornix
