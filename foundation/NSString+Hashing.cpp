#include "foundation/NSString+Hashing.h"

#include <span>
#include <utility>

#include "platform/base/Text.h"
#include "platform/system/Digest.h"

namespace vornix {

std::string md5Hash(std::string_view self) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string hash;
  hash.reserve(32);
  for (const auto byte : md5Digest(self)) {
    hash += digits[byte >> 4U];
    hash += digits[byte & 0xFU];
  }
  return hash;
}

std::string base64enc(const Data& data) {
  const auto transform = SecEncodeTransformCreate(kSecBase64Encoding);
  const auto encoded = base64helper(data, transform.get());
  if (!encoded) return {};
  return {reinterpret_cast<const char*>(encoded->data()), encoded->size()};
}

std::optional<Data> base64dec(std::string_view self) {
  if (!text::isValidUtf8(self)) return std::nullopt;
  const auto bytes = std::as_bytes(std::span(self));
  const auto transform = SecDecodeTransformCreate(kSecBase64Encoding);
  return base64helper(Data(bytes.begin(), bytes.end()), transform.get());
}

std::optional<Data> base64helper(std::optional<Data> data, SecTransform* transform) {
  if (transform == nullptr) return std::nullopt;
  if (!transform->setAttribute(kSecTransformInputAttributeName, std::move(data))) {
    return std::nullopt;
  }
  return transform->execute();
}

}  // namespace vornix
