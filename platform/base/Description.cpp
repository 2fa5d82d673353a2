#include "platform/base/Description.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix::text {
namespace {

std::string indentation(int depth) {
  return std::string(static_cast<std::size_t>(depth) * 4, ' ');
}

std::string describeReal(double real) {
  std::array<char, 40> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%0.16g", real);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string describeData(const Data& data) {
  std::string result = "<";
  for (std::size_t index = 0; index < data.size(); ++index) {
    if (index != 0 && index % 4 == 0) result += ' ';
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto byte = std::to_integer<unsigned>(data[index]);
    result += kDigits[byte >> 4U];
    result += kDigits[byte & 0xFU];
  }
  return result + ">";
}

bool standsBare(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, text::isAsciiLetterOrDigit);
}

void appendEscapedUnit(std::string& result, char16_t unit) {
  std::array<char, 8> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "\\U%04x", static_cast<unsigned>(unit));
  result += buffer.data();
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char16_t unit : utf16Units(text)) {
    if (unit == u'"' || unit == u'\\') result += '\\';
    if (unit == u'\n') {
      result += "\\n";
    } else if (unit < 0x80) {
      result += static_cast<char>(unit);
    } else {
      appendEscapedUnit(result, unit);
    }
  }
  return result + "\"";
}

std::string describeArray(const Array& array, int depth) {
  std::string result = "(\n";
  for (std::size_t index = 0; index < array.size(); ++index) {
    result += indentation(depth + 1) + describeNested(array[index], depth + 1);
    result += index + 1 < array.size() ? ",\n" : "\n";
  }
  return result + indentation(depth) + ")";
}

std::string describeDictionary(const Dictionary& dictionary, int depth) {
  std::vector<const Dictionary::Entry*> entries;
  for (const auto& entry : dictionary) entries.push_back(&entry);
  std::ranges::sort(entries, {}, [](const Dictionary::Entry* entry) { return entry->first; });
  std::string result = "{\n";
  for (const auto* entry : entries) {
    const bool container = entry->second.is<Array>() || entry->second.is<Dictionary>();
    result +=
        indentation(depth + 1) + (standsBare(entry->first) ? entry->first : quoted(entry->first));
    result += container ? " =     " : " = ";
    result += describeNested(entry->second, depth + 1) + ";\n";
  }
  return result + indentation(depth) + "}";
}

}  // namespace

std::string describeDate(Date date) {
  const double seconds = std::floor(date.unixTime());
  // The calendar's years end at 32767.
  constexpr double kLimit = 9.0e11;
  const auto whole =
      static_cast<std::int64_t>(std::isnan(seconds) ? 0 : std::clamp(seconds, -kLimit, kLimit));
  const std::chrono::sys_seconds time{std::chrono::seconds{whole}};
  const auto days = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day day{days};
  const std::chrono::hh_mm_ss clock{time - days};
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%04d-%02u-%02u %02d:%02d:%02d +0000",
                static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                static_cast<unsigned>(day.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return buffer.data();
}

std::string describeNested(const Value& value, int depth) {
  if (const auto* array = value.as<Array>()) return describeArray(*array, depth);
  if (const auto* dictionary = value.as<Dictionary>())
    return describeDictionary(*dictionary, depth);
  if (const auto* string = value.as<std::string>())
    return standsBare(*string) ? *string : quoted(*string);
  // A date's text is no single word, so containers quote it.
  if (const auto* date = value.as<Date>()) return quoted(describeDate(*date));
  return describe(value);
}

std::string describe(const Value& value) {
  if (value.is<Null>()) return "<null>";
  if (const auto* boolean = value.as<bool>()) return *boolean ? "1" : "0";
  if (const auto* integer = value.as<std::int64_t>()) return std::to_string(*integer);
  if (const auto* real = value.as<double>()) return describeReal(*real);
  if (const auto* string = value.as<std::string>()) return *string;
  if (const auto* date = value.as<Date>()) return describeDate(*date);
  if (const auto* data = value.as<Data>()) return describeData(*data);
  return describeNested(value, 0);
}

}  // namespace vornix::text
