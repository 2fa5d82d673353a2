#include "platform/linux/preferences/PropertyList.h"

#include <plist/plist.h>

#include <bit>
#include <limits>
#include <utility>

#include "platform/base/Text.h"
#include "platform/linux/preferences/PropertyListShape.h"

namespace vornix {
namespace {

struct LibraryMemory {
  void operator()(void* memory) const { plist_to_bin_free(static_cast<char*>(memory)); }
};
template <typename T>
using LibraryPointer = std::unique_ptr<T, LibraryMemory>;

// Where the first object of a binary list with one object stands, and the marks before its bytes.
constexpr std::size_t kFirstObject = 8;
constexpr char kDateMark = 0x33;
constexpr char kWideIntegerMark = 0x14;

// The library's own date calls keep microseconds and 32-bit seconds only, its binary form all.
PropertyListNode nodeOfDate(Date date) {
  std::string bytes = "bplist00";
  bytes += kDateMark;
  const auto bits = std::bit_cast<std::uint64_t>(date.timeIntervalSinceReferenceDate);
  for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(bits >> shift & 0xFFU);
  const auto tableOffset = static_cast<char>(bytes.size());
  bytes += static_cast<char>(kFirstObject);
  // The trailer: sizes of an offset and of a reference, one object, the first is the root.
  bytes += std::string(6, '\0') + '\1' + '\1';
  bytes += std::string(7, '\0') + '\1' + std::string(8, '\0') + std::string(7, '\0') + tableOffset;
  return parsePropertyListNode(bytes);
}

std::optional<Value> valueOfDate(void* node) {
  const std::string bytes = binaryPropertyList(node);
  if (bytes.size() < kFirstObject + 9 || bytes[kFirstObject] != kDateMark) return std::nullopt;
  std::uint64_t bits = 0;
  for (std::size_t index = kFirstObject + 1; index < kFirstObject + 9; ++index) {
    bits = bits << 8U | static_cast<unsigned char>(bytes[index]);
  }
  return Value(Date{std::bit_cast<double>(bits)});
}

Value valueOfInteger(void* node) {
  std::uint64_t bits = 0;
  plist_get_uint_val(node, &bits);
  const auto integer = static_cast<std::int64_t>(bits);
  if (integer >= 0) return {integer};
  // Only the binary form tells a negative number from one beyond the signed range.
  const std::string bytes = binaryPropertyList(node);
  const bool wide = bytes.size() > kFirstObject && bytes[kFirstObject] == kWideIntegerMark;
  return {wide ? std::numeric_limits<std::int64_t>::max() : integer};
}

Value valueOfText(void* node) {
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(node, &length);
  return {std::string(text != nullptr ? text : "", text != nullptr ? length : 0)};
}

Value valueOfData(void* node) {
  std::uint64_t length = 0;
  const auto* bytes = reinterpret_cast<const std::byte*>(plist_get_data_ptr(node, &length));
  return {bytes != nullptr ? Data(bytes, bytes + length) : Data()};
}

std::optional<Value> valueOfArray(void* node) {
  Array array;
  array.reserve(plist_array_get_size(node));
  plist_array_iter position = nullptr;
  plist_array_new_iter(node, &position);
  const LibraryPointer<void> owner(position);
  for (plist_t item = nullptr; plist_array_next_item(node, position, &item), item != nullptr;) {
    auto value = valueOfNode(item);
    if (!value) return std::nullopt;
    array.push_back(std::move(*value));
  }
  return Value(std::move(array));
}

std::optional<Value> valueOfDictionary(void* node) {
  Dictionary dictionary;
  plist_dict_iter position = nullptr;
  plist_dict_new_iter(node, &position);
  const LibraryPointer<void> owner(position);
  while (true) {
    char* key = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node, position, &key, &item);
    const LibraryPointer<char> keyOwner(key);
    if (item == nullptr || key == nullptr) break;
    auto value = valueOfNode(item);
    if (!value) return std::nullopt;
    dictionary.set(key, std::move(*value));
  }
  return Value(std::move(dictionary));
}

PropertyListNode nodeOf(Null /*null*/) {
  return nullptr;
}
PropertyListNode nodeOf(bool value) {
  return PropertyListNode(plist_new_bool(value ? 1 : 0));
}
PropertyListNode nodeOf(std::int64_t value) {
  return PropertyListNode(plist_new_uint(static_cast<std::uint64_t>(value)));
}
PropertyListNode nodeOf(double value) {
  return PropertyListNode(plist_new_real(value));
}
PropertyListNode nodeOf(const std::string& text) {
  return PropertyListNode(isPropertyListText(text) ? plist_new_string(text.c_str()) : nullptr);
}
PropertyListNode nodeOf(Date date) {
  return nodeOfDate(date);
}
PropertyListNode nodeOf(const Data& data) {
  return PropertyListNode(plist_new_data(reinterpret_cast<const char*>(data.data()), data.size()));
}

PropertyListNode nodeOf(const Array& array) {
  PropertyListNode node(plist_new_array());
  for (const Value& element : array) {
    PropertyListNode item = nodeOfValue(element);
    if (!item) return nullptr;
    plist_array_append_item(node.get(), item.release());
  }
  return node;
}

PropertyListNode nodeOf(const Dictionary& dictionary) {
  PropertyListNode node(plist_new_dict());
  for (const auto& [key, value] : dictionary) {
    PropertyListNode item = isPropertyListText(key) ? nodeOfValue(value) : nullptr;
    if (!item) return nullptr;
    plist_dict_set_item(node.get(), key.c_str(), item.release());
  }
  return node;
}

}  // namespace

void PropertyListRelease::operator()(void* node) const {
  plist_free(node);
}

PropertyListNode parsePropertyListNode(std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  if (!hasReasonableShape(bytes)) return nullptr;
  plist_t node = nullptr;
  plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
  return PropertyListNode(node);
}

std::string binaryPropertyList(void* node) {
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(node, &bytes, &length);
  const LibraryPointer<char> owner(bytes);
  return bytes != nullptr ? std::string(bytes, length) : std::string();
}

PropertyListNode makeDictionaryNode() {
  return PropertyListNode(plist_new_dict());
}

bool isDictionaryNode(void* node) {
  return node != nullptr && plist_get_node_type(node) == PLIST_DICT;
}

std::optional<Value> valueOfNode(void* node) {
  std::uint8_t boolean = 0;
  double real = 0;
  std::uint64_t identifier = 0;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
      plist_get_bool_val(node, &boolean);
      return Value(boolean != 0);
    case PLIST_UINT:
      return valueOfInteger(node);
    case PLIST_REAL:
      plist_get_real_val(node, &real);
      return Value(real);
    case PLIST_STRING:
      return valueOfText(node);
    case PLIST_DATE:
      return valueOfDate(node);
    case PLIST_DATA:
      return valueOfData(node);
    case PLIST_ARRAY:
      return valueOfArray(node);
    case PLIST_DICT:
      return valueOfDictionary(node);
    case PLIST_UID:
      plist_get_uid_val(node, &identifier);
      return Value(Dictionary{{"CF$UID", static_cast<std::int64_t>(identifier)}});
    default:
      return std::nullopt;
  }
}

PropertyListNode nodeOfValue(const Value& value) {
  return std::visit([](const auto& content) { return nodeOf(content); }, value.storage());
}

bool isPropertyListText(std::string_view text) {
  return text.find('\0') == std::string_view::npos && text::isValidUtf8(text);
}

}  // namespace vornix
