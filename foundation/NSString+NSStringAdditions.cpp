#include "foundation/NSString+NSStringAdditions.h"

#include <algorithm>
#include <array>

#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"
#include "platform/base/Utf16.h"
#include "platform/text/CanonicalSearch.h"
#include "platform/text/CaseMapping.h"

namespace vornix {
namespace {

using text::decodeCharacter;

// Longer paths than the system's longest are no everyday paths.
constexpr std::size_t kLongestUsualPath = 4096;

bool endsInPath(std::string_view self, std::string_view pathWithSlash) {
  return self.ends_with(pathWithSlash.substr(0, pathWithSlash.size() - 1));
}

// The receiver's own final slash is only thought of, so that nothing is copied.
bool holdsAsciiComponents(std::string_view self, std::string_view pathWithSlash) {
  return endsInPath(self, pathWithSlash) || text::containsCanonically(self, pathWithSlash);
}

bool holdsAsciiPath(std::string_view self, std::string_view path) {
  if (path.size() > kLongestUsualPath) return holdsAsciiComponents(self, std::string(path) + '/');
  std::array<char, kLongestUsualPath + 1> withSlash;
  *std::ranges::copy(path, withSlash.begin()).out = '/';
  return holdsAsciiComponents(self, {withSlash.data(), path.size() + 1});
}

bool isDropped(char c) {
  switch (c) {
    case ' ':
    case '-':
    case '_':
    case ',':
    case '.':
    case ':':
    case ';':
    case '\n':
      return true;
    default:
      return false;
  }
}

std::string_view withoutLeadingAsciiDigits(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && text::isAsciiDigit(text[digits])) ++digits;
  return text.substr(digits);
}

}  // namespace

bool isSubpathOf(std::string_view self, std::string_view path) {
  if (path.empty() || text::utf16Length(self) < text::utf16Length(path)) return false;
  if (path == "/") return text::containsCanonically(self, path);
  if (text::isAscii(self) && text::isAscii(path)) return holdsAsciiPath(self, path);
  return text::containsCanonically(std::string(self) + '/', std::string(path) + '/');
}

std::string stringByRemovingSpaces(std::string_view self) {
  std::string kept(self);
  std::erase_if(kept, isDropped);
  return kept;
}

std::string stringWithSubstitute(std::string_view self, std::string_view substitute,
                                 const NSCharacterSet& forCharactersFromSet) {
  std::string result;
  result.reserve(self.size());
  while (!self.empty()) {
    const auto character = decodeCharacter(self);
    const bool replaced = forCharactersFromSet.characterIsMember(character);
    result.append(replaced ? substitute : self.substr(0, character.length));
    self.remove_prefix(character.length);
  }
  return result;
}

std::string trimWhiteSpace(std::string_view self) {
  return std::string(text::trim(self));
}

std::string ellipsizeAfterNWords(std::string_view self, std::int32_t n) {
  if (n < 0) return std::string(self);
  std::size_t end = 0;
  for (std::int32_t words = 0; words < n; ++words) {
    end = self.find(' ', words == 0 ? 0 : end + 1);
    if (end == std::string_view::npos) break;
  }
  return std::string(self.substr(0, end));
}

std::string stripHTML(std::string_view self) {
  std::string kept;
  kept.reserve(self.size());
  std::int64_t depth = 0;
  for (const char c : self) {
    if (c == '<') {
      ++depth;
    } else if (c == '>') {
      --depth;
      if (depth == 0) kept += ' ';
    } else if (depth == 0) {
      kept += c;
    }
  }
  return kept;
}

bool stringIsEmpty(std::optional<std::string_view> string) {
  return !string || text::trim(*string).empty();
}

bool isNumeric(std::string_view self) {
  const auto digits = NSCharacterSet::decimalDigitCharacterSet();
  for (self = withoutLeadingAsciiDigits(self); !self.empty();) {
    const auto character = decodeCharacter(self);
    if (!digits.characterIsMember(character)) return false;
    self.remove_prefix(character.length);
  }
  return true;
}

std::string stringWithCapitalizedFirstLetter(std::string_view self) {
  if (self.empty()) return {};
  const auto first = decodeCharacter(self);
  // Half a surrogate pair has no title case.
  const bool isWholeUnit = first.wellFormed && first.codePoint < 0x10000;
  if (!isWholeUnit) return std::string(self);
  return text::titlecase(first.codePoint).append(self.substr(first.length));
}

std::optional<std::string> vnx_stringEncodedAsURL(std::string_view self) {
  const auto escaped = text::addingPercentEscapes(self);
  if (!escaped) return std::nullopt;
  return text::replaceAll(*escaped, "&", "%26");
}

}  // namespace vornix
