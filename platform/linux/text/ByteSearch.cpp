#include "platform/text/ByteSearch.h"

#include <cstring>

namespace vornix::text {

std::size_t findBytes(std::string_view bytes, std::string_view pattern) {
  if (pattern.empty()) return 0;
  // An empty text may have no address.
  if (bytes.size() < pattern.size()) return std::string_view::npos;
  const void* found = memmem(bytes.data(), bytes.size(), pattern.data(), pattern.size());
  if (found == nullptr) return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - bytes.data());
}

}  // namespace vornix::text
