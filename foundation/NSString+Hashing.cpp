#include "foundation/NSString+Hashing.h"

#include "platform/base/Format.h"
#include "platform/system/Digest.h"

namespace vornix {

std::string md5Hash(std::string_view self) {
  std::string digits;
  for (const auto byte : md5Digest(self)) digits += text::format("%02x", byte);
  return digits;
}

}  // namespace vornix
