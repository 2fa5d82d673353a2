#include "tests/fakes/FakeDateFormatter.h"

#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "platform/base/Text.h"

namespace vornix::fakes {
namespace {

std::string digits(long long number, std::size_t width) {
  const auto text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

}  // namespace

std::unique_ptr<FakeDateFormatter> FakeDateFormatter::create(std::string_view pattern) {
  if (pattern.find_first_of("ABCDEFGIJKLNOPQRTUVWXYZabcefghijklnopqrtuvwxz'") !=
      std::string_view::npos) {
    return nullptr;
  }
  return std::unique_ptr<FakeDateFormatter>(new FakeDateFormatter(pattern));
}

std::string FakeDateFormatter::stringFromDate(Date date) {
  using std::chrono::milliseconds;
  const std::chrono::sys_time<milliseconds> time(
      milliseconds(static_cast<long long>(std::floor(date.unixTime() * 1000.0 + 0.5))));
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day calendar(day);
  const std::chrono::hh_mm_ss clock(time - day);
  const std::array<std::pair<std::string_view, std::string>, 7> fields{
      {{"yyyy", digits(static_cast<int>(calendar.year()), 4)},
       {"MM", digits(static_cast<unsigned>(calendar.month()), 2)},
       {"dd", digits(static_cast<unsigned>(calendar.day()), 2)},
       {"HH", digits(clock.hours().count(), 2)},
       {"mm", digits(clock.minutes().count(), 2)},
       {"SSS", digits(clock.subseconds().count(), 3)},
       {"ss", digits(clock.seconds().count(), 2)}}};
  std::string result = pattern_;
  for (const auto& [letters, value] : fields) result = text::replaceAll(result, letters, value);
  return result;
}

}  // namespace vornix::fakes
