#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

inline constexpr std::string_view kSecBase64Encoding = "base64";
inline constexpr std::string_view kSecTransformInputAttributeName = "INPUT";

// Turns the data that it is given into other data. One thread at a time.
class SecTransform {
 public:
  virtual ~SecTransform() = default;

  // False when the transform has no attribute of that name. No value takes the attribute away.
  [[nodiscard]] virtual bool setAttribute(std::string_view name, std::optional<Data> value) = 0;
  // None without input.
  [[nodiscard]] virtual std::optional<Data> execute() = 0;
};

// Null for an encoding other than `kSecBase64Encoding`. The encoded text has no line breaks; what
// the decoder makes of any input is told at `text::base64Decode`.
[[nodiscard]] std::unique_ptr<SecTransform> SecEncodeTransformCreate(std::string_view encoding);
[[nodiscard]] std::unique_ptr<SecTransform> SecDecodeTransformCreate(std::string_view encoding);

}  // namespace vornix
