#include "fs/RootlessAttribute.h"

#include <cstddef>
#include <string_view>

namespace vornix {
namespace {

constexpr std::string_view kRootlessMark = "com.apple.rootless";

}  // namespace

bool holdsRootlessAttribute(std::string names) {
  if (names.empty()) return false;
  names.back() = '\0';
  std::size_t offset = 0;
  std::size_t length = 0;
  do {
    const std::string_view name(names.c_str() + offset);
    length = name.size();
    if (length == 0) return false;
    if (kRootlessMark.starts_with(name)) return true;
    offset += length + 1;
  } while (offset + length < names.size());
  return false;
}

}  // namespace vornix
