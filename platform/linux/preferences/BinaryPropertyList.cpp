#include "platform/linux/preferences/BinaryPropertyList.h"

#include <bit>

namespace vornix {
namespace {

constexpr std::string_view kMagic = "bplist";
constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;
// Instead of a count that has no room beside the kind.
constexpr std::uint64_t kCountFollows = 0xF;

bool isSize(std::size_t size) {
  return size >= 1 && size <= 8;
}

bool hasCount(std::uint64_t kind) {
  return kind == BinaryPropertyList::kAsciiText || kind == BinaryPropertyList::kWideText ||
         kind == BinaryPropertyList::kArray || kind == BinaryPropertyList::kDictionary;
}

}  // namespace

std::optional<BinaryPropertyList> BinaryPropertyList::open(std::string_view bytes) {
  BinaryPropertyList list(bytes);
  return list.readTrailer() ? std::optional(list) : std::nullopt;
}

bool BinaryPropertyList::readTrailer() {
  if (!bytes_.starts_with(kMagic) || bytes_.size() < kHeaderSize + kTrailerSize) return false;
  const std::size_t trailer = bytes_.size() - kTrailerSize;
  offsetSize_ = static_cast<unsigned char>(bytes_[trailer + 6]);
  referenceSize_ = static_cast<unsigned char>(bytes_[trailer + 7]);
  objectCount_ = number(trailer + 8, 8).value_or(0);
  root_ = number(trailer + 16, 8).value_or(0);
  offsetTable_ = number(trailer + 24, 8).value_or(0);
  return objectCount_ <= bytes_.size() && root_ < objectCount_ && isSize(offsetSize_) &&
         isSize(referenceSize_);
}

std::optional<std::string_view> BinaryPropertyList::slice(std::uint64_t at,
                                                          std::uint64_t size) const {
  if (at > bytes_.size() || size > bytes_.size() - at) return std::nullopt;
  return bytes_.substr(at, size);
}

std::optional<std::uint64_t> BinaryPropertyList::number(std::uint64_t at, std::size_t size) const {
  if (at > bytes_.size() || size > bytes_.size() - at) return std::nullopt;
  std::uint64_t result = 0;
  for (const char* byte = bytes_.data() + at; size > 0; --size) {
    result = result << 8U | static_cast<unsigned char>(*byte++);
  }
  return result;
}

std::optional<BinaryPropertyList::Object> BinaryPropertyList::object(std::uint64_t index) const {
  const auto at = number(offsetTable_ + index * offsetSize_, offsetSize_);
  const auto marker = at ? number(*at, 1) : std::nullopt;
  if (index >= objectCount_ || !marker) return std::nullopt;
  Object found{.kind = *marker >> 4U, .start = *at + 1, .count = *marker & 0xFU};
  if (!hasCount(found.kind)) {
    found.count = 0;
  } else if (found.count == kCountFollows) {
    const std::size_t size = std::size_t{1} << (number(found.start, 1).value_or(0) & 0x3U);
    const auto count = number(found.start + 1, size);
    if (!count) return std::nullopt;
    found.count = *count;
    found.start += 1 + size;
  }
  return found.count <= bytes_.size() ? std::optional(found) : std::nullopt;
}

std::optional<std::uint64_t> BinaryPropertyList::reference(const Object& owner,
                                                           std::uint64_t position) const {
  const auto index = number(owner.start + position * referenceSize_, referenceSize_);
  return index && *index < objectCount_ ? index : std::nullopt;
}

bool BinaryPropertyList::isKey(std::uint64_t index) const {
  const auto text = object(index);
  if (!text || (text->kind != kAsciiText && text->kind != kWideText)) return false;
  if (text->kind == kAsciiText) {
    const auto units = slice(text->start, text->count);
    return units && units->find('\0') == std::string_view::npos;
  }
  for (std::uint64_t unit = 0; unit < text->count; ++unit) {
    if (number(text->start + unit * 2, 2).value_or(0) == 0) return false;
  }
  return true;
}

bool BinaryPropertyList::isText(std::uint64_t index, std::string_view text) const {
  const auto found = object(index);
  return found && found->kind == kAsciiText && slice(found->start, found->count) == text;
}

std::optional<Date> BinaryPropertyList::date(std::string_view key) const {
  const auto dictionary = object(root_);
  if (!dictionary || dictionary->kind != kDictionary) return std::nullopt;
  for (std::uint64_t position = 0; position < dictionary->count; ++position) {
    const auto name = reference(*dictionary, position);
    if (!name || !isText(*name, key)) continue;
    const auto value = reference(*dictionary, dictionary->count + position);
    const auto found = value ? object(*value) : std::nullopt;
    const auto bits = found && found->kind == kDate ? number(found->start, 8) : std::nullopt;
    return bits ? std::optional(Date{std::bit_cast<double>(*bits)}) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vornix
