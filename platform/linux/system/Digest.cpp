#include "platform/system/Digest.h"

#include <md5.h>

namespace vornix {

std::array<std::uint8_t, 16> md5Digest(std::string_view bytes) {
  MD5_CTX context{};
  MD5Init(&context);
  MD5Update(&context, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  std::array<std::uint8_t, 16> digest{};
  MD5Final(digest.data(), &context);
  return digest;
}

}  // namespace vornix
