#include "platform/linux/preferences/PropertyListShape.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace vornix {
namespace {

constexpr std::uint32_t kDeepest = 512;
constexpr std::uint64_t kMostNodes = 1'000'000;
constexpr std::size_t kTrailerSize = 32;

// Measures the tree below the root of a binary list, each object once.
class BinaryShape {
 public:
  explicit BinaryShape(std::string_view bytes) : bytes_(bytes) {}

  bool isReasonable() {
    if (bytes_.size() < 8 + kTrailerSize) return false;
    const std::size_t trailer = bytes_.size() - kTrailerSize;
    offsetSize_ = static_cast<unsigned char>(bytes_[trailer + 6]);
    referenceSize_ = static_cast<unsigned char>(bytes_[trailer + 7]);
    const std::uint64_t count = *number(trailer + 8, 8);
    const std::uint64_t root = *number(trailer + 16, 8);
    offsetTable_ = *number(trailer + 24, 8);
    if (count == 0 || count > bytes_.size() || root >= count || !isSize(offsetSize_) ||
        !isSize(referenceSize_)) {
      return false;
    }
    trees_.resize(count);
    return measure(root, 0);
  }

 private:
  struct Tree {
    std::uint64_t nodes = 0;
    std::uint32_t height = 0;
    bool inProgress = false;
  };
  // `count` units of text, or references that start at `start`.
  struct Object {
    std::uint64_t kind = 0;
    std::uint64_t start = 0;
    std::uint64_t count = 0;
  };

  static constexpr std::uint64_t kAsciiText = 0x5;
  static constexpr std::uint64_t kWideText = 0x6;
  static constexpr std::uint64_t kArray = 0xA;
  static constexpr std::uint64_t kDictionary = 0xD;

  static bool hasCount(std::uint64_t kind) {
    return kind == kAsciiText || kind == kWideText || kind == kArray || kind == kDictionary;
  }

  static bool isSize(std::size_t size) { return size >= 1 && size <= 8; }

  [[nodiscard]] std::optional<std::uint64_t> number(std::uint64_t at, std::size_t size) const {
    if (at > bytes_.size() || size > bytes_.size() - at) return std::nullopt;
    std::uint64_t result = 0;
    for (const char byte : bytes_.substr(at, size)) {
      result = result << 8U | static_cast<unsigned char>(byte);
    }
    return result;
  }

  [[nodiscard]] std::optional<Object> object(std::uint64_t index) const {
    const auto at = number(offsetTable_ + index * offsetSize_, offsetSize_);
    const auto marker = at ? number(*at, 1) : std::nullopt;
    if (!marker) return std::nullopt;
    const std::uint64_t kind = *marker >> 4U;
    if (!hasCount(kind)) return Object{.kind = kind};
    std::uint64_t start = *at + 1;
    std::optional<std::uint64_t> count = *marker & 0xFU;
    if (*count == 0xF) {
      const std::size_t size = std::size_t{1} << (number(start, 1).value_or(0) & 0x3U);
      count = number(start + 1, size);
      start += 1 + size;
    }
    if (!count || *count > bytes_.size()) return std::nullopt;
    return Object{.kind = kind, .start = start, .count = *count};
  }

  static std::uint64_t referencesOf(const Object& object) {
    if (object.kind == kDictionary) return object.count * 2;
    return object.kind == kArray ? object.count : 0;
  }

  // The library stops the process at a key with a zero in it.
  [[nodiscard]] bool isKey(std::uint64_t index) const {
    const auto content = object(index);
    if (!content || (content->kind != kAsciiText && content->kind != kWideText)) return false;
    const std::size_t width = content->kind == kWideText ? 2 : 1;
    for (std::uint64_t unit = 0; unit < content->count; ++unit) {
      if (number(content->start + unit * width, width).value_or(0) == 0) return false;
    }
    return true;
  }

  // Never deeper than `kDeepest`.
  bool measure(std::uint64_t index, std::uint32_t depth) {
    Tree& tree = trees_[index];
    if (tree.inProgress || depth + tree.height > kDeepest) return false;
    if (tree.nodes > 0) return true;
    const auto content = object(index);
    if (!content) return false;
    tree.inProgress = true;
    std::uint64_t nodes = 1;
    std::uint32_t height = 0;
    for (std::uint64_t child = 0; child < referencesOf(*content); ++child) {
      const auto reference = number(content->start + child * referenceSize_, referenceSize_);
      if (!reference || *reference >= trees_.size() || !measure(*reference, depth + 1))
        return false;
      if (content->kind == kDictionary && child < content->count && !isKey(*reference))
        return false;
      nodes += trees_[*reference].nodes;
      height = std::max(height, trees_[*reference].height + 1);
      if (nodes > kMostNodes) return false;
    }
    tree = {nodes, height, false};
    return true;
  }

  std::string_view bytes_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::uint64_t offsetTable_ = 0;
  std::vector<Tree> trees_;
};

bool opensContainer(std::string_view tag) {
  return (tag.starts_with("<array") || tag.starts_with("<dict")) && !tag.ends_with("/>");
}
bool closesContainer(std::string_view tag) {
  return tag.starts_with("</array") || tag.starts_with("</dict");
}

// What ends the piece of markup at the start of `rest`.
std::string_view endOfMarkup(std::string_view rest) {
  if (rest.starts_with("<!--")) return "-->";
  if (rest.starts_with("<![CDATA[")) return "]]>";
  return ">";
}

bool isReasonableXml(std::string_view bytes) {
  std::uint32_t depth = 0;
  std::uint64_t tags = 0;
  for (std::size_t at = bytes.find('<'); at != std::string_view::npos; at = bytes.find('<', at)) {
    const std::string_view rest = bytes.substr(at);
    const std::string_view end = endOfMarkup(rest);
    const std::size_t length = rest.find(end);
    if (length == std::string_view::npos) return true;
    const std::string_view tag = rest.substr(0, length + end.size());
    if (opensContainer(tag)) ++depth;
    if (closesContainer(tag) && depth > 0) --depth;
    if (depth > kDeepest || ++tags > 4 * kMostNodes) return false;
    at += tag.size();
  }
  return true;
}

}  // namespace

bool hasReasonableShape(std::string_view bytes) {
  return bytes.starts_with("bplist") ? BinaryShape(bytes).isReasonable() : isReasonableXml(bytes);
}

}  // namespace vornix
