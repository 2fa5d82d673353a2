#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/Description.h"
#include "platform/linux/preferences/PropertyList.h"

// Whatever a preference file holds, it is read as values or as nothing, and its values survive
// being written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vornix;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const PropertyListNode node = parsePropertyListNode(bytes);
  const auto value = node ? valueOfNode(node.get()) : std::nullopt;
  if (!value) return 0;
  const PropertyListNode again = nodeOfValue(*value);
  if (again && parsePropertyListNode(binaryPropertyList(again.get())) == nullptr) __builtin_trap();
  return 0;
}
