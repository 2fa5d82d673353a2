#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/system/LocaleEnvironment.h"
#include "platform/system/NSDateFormatter.h"

namespace vornix {

// The name by which ICU knows the locale, where its dates are not the Gregorian calendar in ASCII
// digits; none where they are.
[[nodiscard]] std::optional<std::string> icuLocaleOfUnusualDates(const LocaleName& locale);

// A formatter for such a locale, in the zone that the C library has read. Null when ICU cannot be
// loaded or does not want the pattern; `why` then says so.
[[nodiscard]] std::unique_ptr<NSDateFormatter> icuDateFormatter(std::string_view pattern,
                                                                const std::string& icuLocale,
                                                                std::string* why);

// A formatter for the locale of a name as in LC_TIME. Where ICU is missing, a diagnostic with the
// first date, and the Gregorian calendar in ASCII digits. Null when the pattern cannot be used.
[[nodiscard]] std::unique_ptr<NSDateFormatter> dateFormatterForLocale(std::string_view pattern,
                                                                      std::string_view localeName);

}  // namespace vornix
