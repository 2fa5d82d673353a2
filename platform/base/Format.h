#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "platform/base/NSError.h"
#include "platform/base/NSObject.h"
#include "platform/base/Value.h"

namespace vornix::text {

// One argument of a format. Refers to the caller's objects, which must outlive the call.
class FormatArgument {
 public:
  // NOLINTBEGIN(google-explicit-constructor): arguments are written as in a printf call.
  template <typename T>
  requires(std::integral<T> && !std::same_as<T, bool>) FormatArgument(T value) {
    if constexpr (std::is_signed_v<T>) {
      value_ = static_cast<std::int64_t>(value);
    } else {
      value_ = static_cast<std::uint64_t>(value);
    }
  }
  FormatArgument(bool value) : value_(value) {}
  FormatArgument(double value) : value_(value) {}
  FormatArgument(const char* text) : value_(text) {}
  FormatArgument(std::string_view text) : value_(text) {}
  FormatArgument(const std::string& text) : value_(std::string_view(text)) {}
  FormatArgument(const std::optional<std::string>& text);
  FormatArgument(std::nullptr_t) {}
  FormatArgument(const void* pointer) : value_(pointer) {}
  FormatArgument(const Value& value) : value_(&value) {}
  FormatArgument(const NSError& error) : value_(&error) {}
  FormatArgument(const NSObject* object) : value_(object) {}
  template <std::derived_from<NSObject> T>
  FormatArgument(const std::shared_ptr<T>& object)
      : value_(static_cast<const NSObject*>(object.get())) {}
  // NOLINTEND(google-explicit-constructor)

  using Storage =
      std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, const char*,
                   std::string_view, const void*, const Value*, const NSError*, const NSObject*>;
  [[nodiscard]] const Storage& storage() const { return value_; }

 private:
  Storage value_;
};

using FormatArguments = std::span<const FormatArgument>;

// Fills a format: "%@" for any argument, the C conversions for numbers, pointers and texts, with
// their flags, width, precision and size letters. Numbers are cut to the size that the conversion
// names. "%1$@" picks an argument by position. A conversion whose argument has another type prints
// that argument as "%@" would; a missing argument prints "(null)". An unknown letter is printed
// without its percent sign; a lone percent sign at the end vanishes.
[[nodiscard]] std::string formatWithArguments(std::string_view format, FormatArguments arguments);

template <typename... Arguments>
[[nodiscard]] std::string format(std::string_view format, const Arguments&... arguments) {
  const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(arguments)...};
  return formatWithArguments(format, list);
}

// The text that "%@" prints for the argument.
[[nodiscard]] std::string description(const FormatArgument& argument);

}  // namespace vornix::text
