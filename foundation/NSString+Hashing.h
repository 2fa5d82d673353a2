#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"
#include "platform/text/SecTransform.h"

namespace vornix {

// MD5 of the receiver's bytes as 32 lower-case hexadecimal digits. Ill-formed bytes and lone
// surrogates count as they stand, so that every text has a hash.
[[nodiscard]] std::string md5Hash(std::string_view self);

// The data in Base64, padded, in one line.
[[nodiscard]] std::string base64enc(const Data& data);

// The data that the receiver holds in Base64. Never fails on what is no Base64 (see
// `text::base64Decode` for what comes out); none for a receiver that is not well-formed UTF-8.
[[nodiscard]] std::optional<Data> base64dec(std::string_view self);

// What the transform makes of the data; none without a transform, without data, and when the
// transform takes no input.
[[nodiscard]] std::optional<Data> base64helper(std::optional<Data> data, SecTransform* transform);

}  // namespace vornix
