#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// A node of the property-list library, owned with everything below it.
struct PropertyListRelease {
  void operator()(void* node) const;
};
using PropertyListNode = std::unique_ptr<void, PropertyListRelease>;

// A property list in binary or XML form; null for anything else, and for one that nests deeper than
// 512 levels or unfolds to more than a million nodes.
[[nodiscard]] PropertyListNode parsePropertyListNode(std::string_view bytes);
// The binary form; empty when the library fails.
[[nodiscard]] std::string binaryPropertyList(void* node);

[[nodiscard]] PropertyListNode makeDictionaryNode();
[[nodiscard]] bool isDictionaryNode(void* node);

// None for a node that no value stands for. Integers above the signed range saturate; a UID reads
// as a dictionary with the key "CF$UID".
[[nodiscard]] std::optional<Value> valueOfNode(void* node);
// Null for what a property list cannot hold: the null object, and texts that are ill-formed UTF-8
// or contain NUL.
[[nodiscard]] PropertyListNode nodeOfValue(const Value& value);
// True for a text that a property list can hold.
[[nodiscard]] bool isPropertyListText(std::string_view text);

}  // namespace vornix
