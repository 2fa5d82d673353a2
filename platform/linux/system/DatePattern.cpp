#include "platform/linux/system/DatePattern.h"

#include <algorithm>
#include <cmath>

#include "platform/base/Text.h"

namespace vornix {
namespace {

// Takes a quoted text, which starts the pattern, off it. None when it does not end.
std::optional<std::string> takeQuoted(std::string_view& pattern) {
  if (pattern.starts_with("''")) {
    pattern.remove_prefix(2);
    return "'";
  }
  std::string literal;
  while (pattern.starts_with('\'')) {
    // A quote that follows a quoted text at once is one of its characters.
    if (!literal.empty()) literal += '\'';
    pattern.remove_prefix(1);
    const auto quote = pattern.find('\'');
    if (quote == std::string_view::npos) return std::nullopt;
    literal.append(pattern.substr(0, quote));
    pattern.remove_prefix(quote + 1);
  }
  return literal;
}

}  // namespace

std::optional<std::vector<DateField>> parseDatePattern(std::string_view pattern) {
  constexpr std::string_view kFields = "yMdHmsS";
  std::vector<DateField> fields;
  fields.reserve(pattern.size());
  while (!pattern.empty()) {
    const char first = pattern.front();
    if (first == '\'') {
      auto literal = takeQuoted(pattern);
      if (!literal) return std::nullopt;
      fields.push_back({0, 0, *std::move(literal)});
      continue;
    }
    const auto length = std::min(pattern.find_first_not_of(first), pattern.size());
    if (!text::isAsciiLetter(first)) {
      fields.push_back({0, 0, std::string(pattern.substr(0, length))});
    } else if (kFields.find(first) != std::string_view::npos) {
      fields.push_back({first, static_cast<int>(length), {}});
    } else {
      return std::nullopt;
    }
    pattern.remove_prefix(length);
  }
  return fields;
}

RoundedTime roundToMilliseconds(Date date) {
  // About the years -9999 and 9999: nobody reads more digits of a year.
  constexpr double kFarthest = 2.5e14;
  const double rounded = std::floor(date.unixTime() * 1000.0 + 0.5);
  const double shown = std::isnan(rounded) ? 0.0 : std::clamp(rounded, -kFarthest, kFarthest);
  const auto milliseconds = static_cast<std::int64_t>(shown);
  const auto fraction = static_cast<int>(((milliseconds % 1000) + 1000) % 1000);
  return {(milliseconds - fraction) / 1000, fraction};
}

}  // namespace vornix
