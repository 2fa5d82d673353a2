#include "platform/base/Text.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/base/Utf8.h"
#include "platform/base/WhiteSpace.h"

namespace vornix::text {
namespace {

// Where the last character of `text` starts.
std::size_t lastCharacterStart(std::string_view text) {
  const std::size_t earliest = text.size() > 4 ? text.size() - 4 : 0;
  for (std::size_t start = earliest; start < text.size(); ++start) {
    const auto lead = static_cast<unsigned char>(text[start]);
    if ((lead & 0xC0U) == 0x80U) continue;
    if (start + decodeCharacter(text.substr(start)).length == text.size()) return start;
  }
  return text.size() - 1;
}

bool isSpaceAt(std::string_view text) {
  const DecodedCharacter character = decodeCharacter(text);
  return character.wellFormed && isWhiteSpaceOrNewline(character.codePoint);
}

std::string_view withoutLeadingSpace(std::string_view text) {
  while (!text.empty() && isSpaceAt(text)) text.remove_prefix(decodeCharacter(text).length);
  return text;
}

bool takeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

template <typename Convert>
std::string mapped(std::string_view text, Convert convert) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), convert);
  return result;
}

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

}  // namespace

std::string_view trim(std::string_view text) {
  text = withoutLeadingSpace(text);
  while (!text.empty()) {
    const std::size_t start = lastCharacterStart(text);
    if (!isSpaceAt(text.substr(start))) break;
    text = text.substr(0, start);
  }
  return text;
}

std::int64_t integerValue(std::string_view text) {
  text = withoutLeadingSpace(text);
  const bool negative = takeSign(text);
  const auto end = std::ranges::find_if_not(text, isAsciiDigit);
  const std::string digits = (negative ? "-" : "") + std::string(text.begin(), end);
  std::int64_t value = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (parsed.ec == std::errc::result_out_of_range) {
    return negative ? std::numeric_limits<std::int64_t>::min()
                    : std::numeric_limits<std::int64_t>::max();
  }
  return value;
}

double doubleValue(std::string_view text) {
  text = withoutLeadingSpace(text);
  const bool negative = takeSign(text);
  if (text.empty() || (!isAsciiDigit(text.front()) && text.front() != '.')) return 0;
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return negative ? -value : value;
}

bool boolValue(std::string_view text) {
  text = withoutLeadingSpace(text);
  takeSign(text);
  const auto first = text.find_first_not_of('0');
  if (first == std::string_view::npos) return false;
  return std::string_view("YyTt123456789").find(text[first]) != std::string_view::npos;
}

std::string asciiLowercase(std::string_view text) {
  return mapped(text, lower);
}
std::string asciiUppercase(std::string_view text) {
  return mapped(text, upper);
}

bool asciiEqualIgnoringCase(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, lower, lower);
}

std::string replaceAll(std::string_view text, std::string_view target,
                       std::string_view replacement) {
  if (target.empty()) return std::string(text);
  std::string result;
  for (auto found = text.find(target); found != std::string_view::npos; found = text.find(target)) {
    result.append(text.substr(0, found)).append(replacement);
    text.remove_prefix(found + target.size());
  }
  return result.append(text);
}

std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> pieces;
  if (!separator.empty()) {
    for (auto found = text.find(separator); found != std::string_view::npos;
         found = text.find(separator)) {
      pieces.emplace_back(text.substr(0, found));
      text.remove_prefix(found + separator.size());
    }
  }
  pieces.emplace_back(text);
  return pieces;
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator) {
  std::string result;
  for (std::size_t index = 0; index < pieces.size(); ++index) {
    if (index != 0) result += separator;
    result += pieces[index];
  }
  return result;
}

}  // namespace vornix::text
