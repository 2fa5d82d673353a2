#include "platform/linux/preferences/PropertyListShape.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/linux/preferences/BinaryPropertyList.h"

namespace vornix {
namespace {

constexpr std::uint32_t kDeepest = 512;
constexpr std::uint64_t kMostNodes = 1'000'000;

// Measures the tree below the root of a binary list, each object once.
class BinaryShape {
 public:
  explicit BinaryShape(const BinaryPropertyList& list) : list_(list), trees_(list.objectCount()) {}

  // Never deeper than `kDeepest`.
  bool measure(std::uint64_t index, std::uint32_t depth) {
    Tree& tree = trees_[index];
    if (tree.inProgress || depth + tree.height > kDeepest) return false;
    if (tree.nodes > 0) return true;
    const auto content = list_.object(index);
    if (!content) return false;
    tree.inProgress = true;
    Tree measured{.nodes = 1};
    for (std::uint64_t position = 0; position < referencesOf(*content); ++position) {
      const auto child = list_.reference(*content, position);
      if (!child || !measure(*child, depth + 1)) return false;
      if (isKeyOf(*content, position) && !list_.isKey(*child)) return false;
      measured.nodes += trees_[*child].nodes;
      measured.height = std::max(measured.height, trees_[*child].height + 1);
      if (measured.nodes > kMostNodes) return false;
    }
    tree = measured;
    return true;
  }

 private:
  using Object = BinaryPropertyList::Object;
  struct Tree {
    std::uint64_t nodes = 0;
    std::uint32_t height = 0;
    bool inProgress = false;
  };

  static std::uint64_t referencesOf(const Object& object) {
    if (object.kind == BinaryPropertyList::kDictionary) return object.count * 2;
    return object.kind == BinaryPropertyList::kArray ? object.count : 0;
  }
  // The library stops the process at a key with a zero in it.
  static bool isKeyOf(const Object& object, std::uint64_t position) {
    return object.kind == BinaryPropertyList::kDictionary && position < object.count;
  }

  const BinaryPropertyList& list_;
  std::vector<Tree> trees_;
};

bool isReasonableBinary(std::string_view bytes) {
  const auto list = BinaryPropertyList::open(bytes);
  return list && BinaryShape(*list).measure(list->root(), 0);
}

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
  return bytes.starts_with("bplist") ? isReasonableBinary(bytes) : isReasonableXml(bytes);
}

}  // namespace vornix
