#include "platform/base/Format.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "platform/base/Description.h"

namespace vornix::text {
namespace {

template <typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

// Wider fields than this can only be a mistake, and would let a format eat all memory.
constexpr int kWidestField = 4096;

std::string printPointer(const void* pointer) {
  std::array<char, 20> buffer{'0', 'x'};
  const auto end = std::to_chars(buffer.data() + 2, buffer.data() + buffer.size(),
                                 reinterpret_cast<std::uintptr_t>(pointer), 16);
  return {buffer.data(), end.ptr};
}

struct Conversion {
  std::string flags;
  std::optional<int> width;
  std::optional<int> precision;
  // 1 for "hh", 2 for "h", 4 without a letter, 8 for "l", "ll", "q", "j", "z" and "t".
  int size = 4;
  char letter = 0;
};

std::optional<std::int64_t> asInteger(const FormatArgument& argument) {
  using Result = std::optional<std::int64_t>;
  return std::visit(
      Overloaded{[](bool value) -> Result { return value ? 1 : 0; },
                 [](std::int64_t value) -> Result { return value; },
                 [](std::uint64_t value) -> Result { return static_cast<std::int64_t>(value); },
                 [](const Value* value) -> Result {
                   return value->is<bool>() || value->is<std::int64_t>()
                              ? Result(value->integerValue())
                              : std::nullopt;
                 },
                 [](const auto&) -> Result { return std::nullopt; }},
      argument.storage());
}

std::optional<double> asReal(const FormatArgument& argument) {
  if (const auto* real = std::get_if<double>(&argument.storage())) return *real;
  if (const auto* value = std::get_if<const Value*>(&argument.storage());
      value != nullptr && (*value)->is<double>()) {
    return (*value)->doubleValue();
  }
  return std::nullopt;
}

std::int64_t cutSigned(std::int64_t value, int size) {
  if (size == 1) return static_cast<std::int8_t>(value);
  if (size == 2) return static_cast<std::int16_t>(value);
  return size == 4 ? static_cast<std::int32_t>(value) : value;
}

std::uint64_t cutUnsigned(std::int64_t value, int size) {
  if (size == 1) return static_cast<std::uint8_t>(value);
  if (size == 2) return static_cast<std::uint16_t>(value);
  return size == 4 ? static_cast<std::uint32_t>(value) : static_cast<std::uint64_t>(value);
}

std::string padded(std::string_view text, const Conversion& conversion) {
  const auto width = static_cast<std::size_t>(conversion.width.value_or(0));
  if (text.size() >= width) return std::string(text);
  const std::string padding(width - text.size(), ' ');
  const bool left = conversion.flags.find('-') != std::string::npos;
  return left ? std::string(text) + padding : padding + std::string(text);
}

std::string precisionText(const Conversion& conversion) {
  return conversion.precision ? "." + std::to_string(*conversion.precision) : std::string();
}

// Hands one number to the C library, whose own format is built from checked pieces.
template <typename Number>
std::string printNumber(const Conversion& conversion, const char* sizeLetters, Number number) {
  const std::string width = conversion.width ? std::to_string(*conversion.width) : std::string();
  const std::string pattern =
      "%" + conversion.flags + width + precisionText(conversion) + sizeLetters + conversion.letter;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int length = std::snprintf(nullptr, 0, pattern.c_str(), number);
  if (length < 0) return {};
  std::string result(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(result.data(), result.size(), pattern.c_str(), number);
#pragma GCC diagnostic pop
  result.pop_back();
  return result;
}

std::string printText(const Conversion& conversion, std::string text) {
  if (conversion.precision && text.size() > static_cast<std::size_t>(*conversion.precision)) {
    text.resize(static_cast<std::size_t>(*conversion.precision));
  }
  return padded(text, conversion);
}

std::string printInteger(const Conversion& conversion, std::int64_t value) {
  if (conversion.letter == 'c')
    return printText(conversion, std::string(1, static_cast<char>(value)));
  if (conversion.letter == 'd' || conversion.letter == 'i') {
    return printNumber(conversion, "ll", static_cast<long long>(cutSigned(value, conversion.size)));
  }
  return printNumber(conversion, "ll",
                     static_cast<unsigned long long>(cutUnsigned(value, conversion.size)));
}

std::string printArgument(const Conversion& conversion, const FormatArgument& argument) {
  constexpr std::string_view kIntegers = "diuxXoc";
  constexpr std::string_view kReals = "fFeEgGaA";
  if (kIntegers.find(conversion.letter) != std::string_view::npos) {
    if (const auto integer = asInteger(argument)) return printInteger(conversion, *integer);
  } else if (kReals.find(conversion.letter) != std::string_view::npos) {
    if (const auto real = asReal(argument)) return printNumber(conversion, "", *real);
  } else if (conversion.letter == 'p') {
    if (std::holds_alternative<std::monostate>(argument.storage())) return "0x0";
  } else if (conversion.letter == 's') {
    return printText(conversion, description(argument));
  }
  return padded(description(argument), conversion);
}

class Formatter {
 public:
  Formatter(std::string_view format, FormatArguments arguments)
      : rest_(format), arguments_(arguments) {}

  std::string run() {
    std::string result;
    for (auto percent = rest_.find('%'); percent != std::string_view::npos;
         percent = rest_.find('%')) {
      result.append(rest_.substr(0, percent));
      rest_.remove_prefix(percent + 1);
      result.append(next());
    }
    return result.append(rest_);
  }

 private:
  std::string next() {
    if (rest_.empty()) return {};
    if (takeIf('%')) return "%";
    takePosition();
    Conversion conversion = takeConversion();
    constexpr std::string_view kLetters = "@diuxXocfFeEgGaAsp";
    if (conversion.letter == 0) return {};
    if (kLetters.find(conversion.letter) == std::string_view::npos) return {conversion.letter};
    const std::size_t index = position_ ? *position_ : nextArgument_++;
    position_.reset();
    if (index >= arguments_.size()) return "(null)";
    return printArgument(conversion, arguments_[index]);
  }

  void takePosition() {
    const auto end = rest_.find_first_not_of("0123456789");
    if (end == 0 || end == std::string_view::npos || rest_[end] != '$') return;
    std::size_t number = 0;
    std::from_chars(rest_.data(), rest_.data() + end, number);
    // A position of zero wraps to one that no argument has.
    position_ = number - 1;
    rest_.remove_prefix(end + 1);
  }

  Conversion takeConversion() {
    Conversion conversion;
    while (!rest_.empty() &&
           std::string_view("-+ #0").find(rest_.front()) != std::string_view::npos) {
      conversion.flags += rest_.front();
      rest_.remove_prefix(1);
    }
    conversion.width = takeNumber();
    if (conversion.width && *conversion.width < 0) {
      conversion.flags += '-';
      conversion.width = -*conversion.width;
    }
    if (takeIf('.')) {
      conversion.precision = takeNumber().value_or(0);
      if (*conversion.precision < 0) conversion.precision.reset();
    }
    takeSize(conversion);
    if (!rest_.empty()) {
      conversion.letter = rest_.front();
      rest_.remove_prefix(1);
    }
    return conversion;
  }

  std::optional<int> takeNumber() {
    if (takeIf('*')) {
      const auto index = nextArgument_++;
      const auto value = index < arguments_.size() ? asInteger(arguments_[index]) : std::nullopt;
      const auto limit = std::int64_t{kWidestField};
      return static_cast<int>(std::clamp(value.value_or(0), -limit, limit));
    }
    const auto end = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    if (end == 0) return std::nullopt;
    int number = 0;
    const auto parsed = std::from_chars(rest_.data(), rest_.data() + end, number);
    rest_.remove_prefix(end);
    return parsed.ec == std::errc() ? std::min(number, kWidestField) : kWidestField;
  }

  void takeSize(Conversion& conversion) {
    while (!rest_.empty() &&
           std::string_view("hlqjztL").find(rest_.front()) != std::string_view::npos) {
      const bool half = rest_.front() == 'h';
      conversion.size = half ? (conversion.size == 2 ? 1 : 2) : 8;
      rest_.remove_prefix(1);
    }
  }

  bool takeIf(char wanted) {
    if (rest_.empty() || rest_.front() != wanted) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::string_view rest_;
  FormatArguments arguments_;
  std::size_t nextArgument_ = 0;
  std::optional<std::size_t> position_;
};

}  // namespace

FormatArgument::FormatArgument(const std::optional<std::string>& text) {
  if (text) value_ = std::string_view(*text);
}

std::string formatWithArguments(std::string_view format, FormatArguments arguments) {
  return Formatter(format, arguments).run();
}

std::string description(const FormatArgument& argument) {
  return std::visit(
      Overloaded{[](std::monostate) -> std::string { return "(null)"; },
                 [](bool value) -> std::string { return value ? "1" : "0"; },
                 [](std::int64_t value) { return std::to_string(value); },
                 [](std::uint64_t value) { return std::to_string(value); },
                 [](double value) { return describe(Value(value)); },
                 [](const char* text) -> std::string { return text != nullptr ? text : "(null)"; },
                 [](std::string_view text) { return std::string(text); },
                 [](const void* pointer) { return printPointer(pointer); },
                 [](const Value* value) { return describe(*value); },
                 [](const NSError* error) { return error->description(); },
                 [](const NSObject* object) -> std::string {
                   return object != nullptr ? object->description() : "(null)";
                 }},
      argument.storage());
}

}  // namespace vornix::text
