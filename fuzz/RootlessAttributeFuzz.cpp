#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fs/RootlessAttribute.h"
#include "fuzz/support/Require.h"

namespace {

// Step by step, on a copy that nothing can be read beyond.
bool scanned(std::string list) {
  if (list.empty()) return false;
  list[list.size() - 1] = '\0';
  constexpr std::string_view kMark = "com.apple.rootless";
  std::size_t offset = 0;
  while (true) {
    std::size_t length = 0;
    while (list.at(offset + length) != '\0') ++length;
    if (length == 0) return false;
    if (list.substr(offset, length) == kMark.substr(0, length)) return true;
    offset += length + 1;
    if (offset + length >= list.size()) return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string list(reinterpret_cast<const char*>(data), size);
  vornix::fuzz::require(vornix::holdsRootlessAttribute(list) == scanned(list));
  return 0;
}
