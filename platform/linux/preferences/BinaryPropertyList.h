#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/base/Date.h"

namespace vornix {

// The objects of a binary property list, as they stand in its bytes. Answers nothing where they
// lead outside. The bytes must outlive it.
class BinaryPropertyList {
 public:
  static constexpr std::uint64_t kDate = 0x3;
  static constexpr std::uint64_t kAsciiText = 0x5;
  static constexpr std::uint64_t kWideText = 0x6;
  static constexpr std::uint64_t kArray = 0xA;
  static constexpr std::uint64_t kDictionary = 0xD;

  // From `start`: `count` units of a text, `count` references of an array, as many to the keys of a
  // dictionary and then to its values. No count for other kinds.
  struct Object {
    std::uint64_t kind = 0;
    std::uint64_t start = 0;
    std::uint64_t count = 0;
  };

  // None for bytes that do not end as a binary property list does.
  [[nodiscard]] static std::optional<BinaryPropertyList> open(std::string_view bytes);

  [[nodiscard]] std::uint64_t objectCount() const { return objectCount_; }
  [[nodiscard]] std::uint64_t root() const { return root_; }
  [[nodiscard]] std::optional<Object> object(std::uint64_t index) const;
  // The index of an object that an array or dictionary refers to.
  [[nodiscard]] std::optional<std::uint64_t> reference(const Object& owner,
                                                       std::uint64_t position) const;
  // Whether the object is a text without a zero in it.
  [[nodiscard]] bool isKey(std::uint64_t index) const;
  // The date of a key of the dictionary at the root. None for another kind of value, and for a key
  // beyond ASCII.
  [[nodiscard]] std::optional<Date> date(std::string_view key) const;

 private:
  explicit BinaryPropertyList(std::string_view bytes) : bytes_(bytes) {}
  [[nodiscard]] bool readTrailer();
  [[nodiscard]] std::optional<std::string_view> slice(std::uint64_t at, std::uint64_t size) const;
  [[nodiscard]] std::optional<std::uint64_t> number(std::uint64_t at, std::size_t size) const;
  [[nodiscard]] bool isText(std::uint64_t index, std::string_view text) const;

  std::string_view bytes_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t offsetTable_ = 0;
};

}  // namespace vornix
