#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Date.h"

namespace vornix {

// A piece of a date pattern: a field, or literal text where `letter` is 0.
struct DateField {
  char letter = 0;
  int length = 0;
  std::string literal;
};

// Fields are runs of one of "yMdHmsS"; other characters stand for themselves, letters in single
// quotes too, two single quotes for one. None when another letter is used or a quote is left open.
[[nodiscard]] std::optional<std::vector<DateField>> parseDatePattern(std::string_view pattern);

// A date to the nearest millisecond, halves up.
struct RoundedTime {
  // Since the Unix epoch.
  std::int64_t seconds = 0;
  int milliseconds = 0;
};

// Dates too far away for a calendar, and what is no date, count as the nearest that can be shown.
[[nodiscard]] RoundedTime roundToMilliseconds(Date date);

}  // namespace vornix
