#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/base/Date.h"

namespace vornix {

class Value;

// Bytes without meaning.
using Data = std::vector<std::byte>;
using Array = std::vector<Value>;

// Keys with values. Enumerates in the order in which keys were first set.
class Dictionary {
 public:
  using Entry = std::pair<std::string, Value>;

  Dictionary();
  Dictionary(std::initializer_list<Entry> entries);
  Dictionary(const Dictionary&);
  Dictionary(Dictionary&&) noexcept;
  Dictionary& operator=(const Dictionary&);
  Dictionary& operator=(Dictionary&&) noexcept;
  ~Dictionary();

  // The value under `key`, or null. Valid until the dictionary changes.
  [[nodiscard]] const Value* find(std::string_view key) const;
  [[nodiscard]] bool contains(std::string_view key) const { return find(key) != nullptr; }
  // Replaces in place or appends.
  void set(std::string_view key, Value value);
  // False when there was no such key.
  bool remove(std::string_view key);

  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] const Entry* begin() const;
  [[nodiscard]] const Entry* end() const;

  // Equal when both hold equal values under the same keys, in whatever order.
  friend bool operator==(const Dictionary& left, const Dictionary& right);

 private:
  std::vector<Entry> entries_;
};

// The null object: a present value that stands for nothing.
struct Null {
  friend constexpr bool operator==(Null, Null) { return true; }
};

// One property-list value. Copying copies the contents.
class Value {
 public:
  using Storage =
      std::variant<Null, bool, std::int64_t, double, std::string, Date, Data, Array, Dictionary>;

  Value() = default;
  // NOLINTBEGIN(google-explicit-constructor): a literal in a dictionary reads as a value.
  Value(Null) {}
  Value(bool value) : storage_(value) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) Value(T value) : storage_(static_cast<std::int64_t>(value)) {}
  Value(double value) : storage_(value) {}
  Value(const char* text) : storage_(std::string(text)) {}
  Value(std::string text) : storage_(std::move(text)) {}
  Value(std::string_view text) : storage_(std::string(text)) {}
  Value(Date date) : storage_(date) {}
  Value(Data data) : storage_(std::move(data)) {}
  Value(Array array) : storage_(std::move(array)) {}
  Value(Dictionary dictionary) : storage_(std::move(dictionary)) {}
  // NOLINTEND(google-explicit-constructor)

  // The contents when the value is of that type, else null. Types: those of `Storage`.
  template <typename T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&storage_);
  }
  template <typename T>
  [[nodiscard]] T* as() {
    return std::get_if<T>(&storage_);
  }
  template <typename T>
  [[nodiscard]] bool is() const {
    return std::holds_alternative<T>(storage_);
  }
  // Boolean, integer or real.
  [[nodiscard]] bool isNumber() const;

  // The platform's conversions. Numbers convert by value (a real truncates toward zero and
  // saturates), strings by their leading digits; every other type reads as 0 or false.
  [[nodiscard]] std::int64_t integerValue() const;
  [[nodiscard]] double doubleValue() const;
  [[nodiscard]] bool boolValue() const;

  // The text that "%@" prints, containers over several lines.
  [[nodiscard]] std::string description() const;

  [[nodiscard]] const Storage& storage() const { return storage_; }

  // By value across number types: true equals 1 equals 1.0. Strings compare literally.
  friend bool operator==(const Value& left, const Value& right);

 private:
  Storage storage_;
};

}  // namespace vornix
