#include "platform/base/Value.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/base/Description.h"
#include "platform/base/Text.h"

namespace vornix {
namespace {

std::int64_t truncated(double real) {
  constexpr double kLimit = 9223372036854775808.0;
  if (std::isnan(real)) return 0;
  if (real >= kLimit) return std::numeric_limits<std::int64_t>::max();
  if (real <= -kLimit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(real);
}

bool integerEqualsReal(std::int64_t integer, double real) {
  return std::trunc(real) == real && truncated(real) == integer &&
         static_cast<double>(integer) == real;
}

bool numbersEqual(const Value& left, const Value& right) {
  const auto* leftReal = left.as<double>();
  const auto* rightReal = right.as<double>();
  if (leftReal != nullptr && rightReal != nullptr) return *leftReal == *rightReal;
  if (leftReal != nullptr) return integerEqualsReal(right.integerValue(), *leftReal);
  if (rightReal != nullptr) return integerEqualsReal(left.integerValue(), *rightReal);
  return left.integerValue() == right.integerValue();
}

}  // namespace

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary&) = default;
Dictionary::Dictionary(Dictionary&&) noexcept = default;
Dictionary& Dictionary::operator=(const Dictionary&) = default;
Dictionary& Dictionary::operator=(Dictionary&&) noexcept = default;
Dictionary::~Dictionary() = default;

Dictionary::Dictionary(std::initializer_list<Entry> entries) {
  for (const auto& [key, value] : entries) set(key, value);
}

const Value* Dictionary::find(std::string_view key) const {
  const auto entry = std::ranges::find(entries_, key, &Entry::first);
  return entry == entries_.end() ? nullptr : &entry->second;
}

void Dictionary::set(std::string_view key, Value value) {
  const auto entry = std::ranges::find(entries_, key, &Entry::first);
  if (entry == entries_.end()) {
    entries_.emplace_back(std::string(key), std::move(value));
  } else {
    entry->second = std::move(value);
  }
}

bool Dictionary::remove(std::string_view key) {
  return std::erase_if(entries_, [key](const Entry& entry) { return entry.first == key; }) > 0;
}

std::size_t Dictionary::size() const {
  return entries_.size();
}
const Dictionary::Entry* Dictionary::begin() const {
  return entries_.data();
}
const Dictionary::Entry* Dictionary::end() const {
  return entries_.data() + entries_.size();
}

bool operator==(const Dictionary& left, const Dictionary& right) {
  if (left.size() != right.size()) return false;
  return std::ranges::all_of(left, [&right](const Dictionary::Entry& entry) {
    const Value* other = right.find(entry.first);
    return other != nullptr && *other == entry.second;
  });
}

bool Value::isNumber() const {
  return is<bool>() || is<std::int64_t>() || is<double>();
}

std::int64_t Value::integerValue() const {
  if (const auto* boolean = as<bool>()) return *boolean ? 1 : 0;
  if (const auto* integer = as<std::int64_t>()) return *integer;
  if (const auto* real = as<double>()) return truncated(*real);
  if (const auto* string = as<std::string>()) return text::integerValue(*string);
  return 0;
}

double Value::doubleValue() const {
  if (const auto* real = as<double>()) return *real;
  if (const auto* string = as<std::string>()) return text::doubleValue(*string);
  return static_cast<double>(integerValue());
}

bool Value::boolValue() const {
  if (const auto* real = as<double>()) return *real != 0;
  if (const auto* string = as<std::string>()) return text::boolValue(*string);
  return integerValue() != 0;
}

std::string Value::description() const {
  return text::describe(*this);
}

bool operator==(const Value& left, const Value& right) {
  if (left.isNumber() && right.isNumber()) return numbersEqual(left, right);
  return left.storage_ == right.storage_;
}

}  // namespace vornix
