#include "platform/system/NSDateFormatter.h"

#include <cstdlib>
#include <ctime>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/linux/system/DatePattern.h"
#include "platform/linux/system/LocaleDates.h"
#include "platform/linux/system/ProcessZone.h"

namespace vornix {
namespace {

void appendNumber(std::string& text, long long number, int width) {
  const auto digits = std::to_string(number);
  if (digits.size() < static_cast<std::size_t>(width)) {
    text.append(static_cast<std::size_t>(width) - digits.size(), '0');
  }
  text += digits;
}

// A year counts within its era: the one before 1 is 1 again.
long long yearOfEra(const std::tm& time) {
  const long long year = 1900LL + time.tm_year;
  return year > 0 ? year : 1 - year;
}

void appendYear(std::string& text, long long year, int length) {
  appendNumber(text, length == 2 ? year % 100 : year, length);
}

void appendFraction(std::string& text, int milliseconds, int length) {
  std::string digits;
  appendNumber(digits, milliseconds, 3);
  digits.resize(static_cast<std::size_t>(length), '0');
  text += digits;
}

void appendField(std::string& text, const DateField& field, const std::tm& time, int milliseconds) {
  switch (field.letter) {
    case 'y':
      return appendYear(text, yearOfEra(time), field.length);
    case 'M':
      return appendNumber(text, time.tm_mon + 1, field.length);
    case 'd':
      return appendNumber(text, time.tm_mday, field.length);
    case 'H':
      return appendNumber(text, time.tm_hour, field.length);
    case 'm':
      return appendNumber(text, time.tm_min, field.length);
    case 's':
      return appendNumber(text, time.tm_sec, field.length);
    case 'S':
      return appendFraction(text, milliseconds, field.length);
    default:
      text += field.literal;
  }
}

class GregorianDateFormatter final : public NSDateFormatter {
 public:
  explicit GregorianDateFormatter(std::vector<DateField> fields) : fields_(std::move(fields)) {}

  [[nodiscard]] std::string stringFromDate(Date date) override {
    const auto rounded = roundToMilliseconds(date);
    const std::time_t seconds = rounded.seconds;
    const auto local = zone_.localTime(seconds);
    if (!local) return {};
    std::string text;
    for (const auto& field : fields_) appendField(text, field, *local, rounded.milliseconds);
    return text;
  }

 private:
  std::vector<DateField> fields_;
  ProcessZone zone_;
};

// Loads ICU for the first date that is printed.
class LocaleDateFormatter final : public NSDateFormatter {
 public:
  LocaleDateFormatter(std::string_view pattern, std::vector<DateField> fields,
                      std::string icuLocale)
      : pattern_(pattern),
        icuLocale_(std::move(icuLocale)),
        formatter_(std::make_unique<GregorianDateFormatter>(std::move(fields))) {}

  [[nodiscard]] std::string stringFromDate(Date date) override {
    if (!std::exchange(tried_, true)) tryIcu();
    return formatter_->stringFromDate(date);
  }

 private:
  // The diagnostic may itself become a line with a date, from this very formatter.
  void tryIcu() {
    std::string why;
    if (auto formatter = icuDateFormatter(pattern_, icuLocale_, &why)) {
      formatter_ = std::move(formatter);
    } else {
      reportDiagnostic("Dates are shown by the Gregorian calendar, since those of " + icuLocale_ +
                       " are not available: " + why);
    }
  }

  std::string pattern_;
  std::string icuLocale_;
  std::unique_ptr<NSDateFormatter> formatter_;
  bool tried_ = false;
};

}  // namespace

std::unique_ptr<NSDateFormatter> dateFormatterForLocale(std::string_view pattern,
                                                        std::string_view localeName) {
  auto fields = parseDatePattern(pattern);
  if (!fields) return nullptr;
  if (auto icuLocale = icuLocaleOfUnusualDates(parseLocaleName(localeName))) {
    return std::make_unique<LocaleDateFormatter>(pattern, *std::move(fields),
                                                 *std::move(icuLocale));
  }
  return std::make_unique<GregorianDateFormatter>(*std::move(fields));
}

std::unique_ptr<NSDateFormatter> NSDateFormatter::formatterWithFormat(std::string_view pattern) {
  const auto lookup = [](const char* name) -> std::optional<std::string> {
    const char* value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
  };
  return dateFormatterForLocale(pattern, localeOfCategory("LC_TIME", lookup));
}

}  // namespace vornix
