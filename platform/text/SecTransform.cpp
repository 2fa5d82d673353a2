#include "platform/text/SecTransform.h"

#include <span>
#include <string>
#include <utility>

#include "platform/base/Base64.h"

namespace vornix {
namespace {

Data encoded(std::span<const std::byte> data) {
  const std::string text = text::base64Encode(data);
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

Data decoded(std::span<const std::byte> data) {
  return text::base64Decode({reinterpret_cast<const char*>(data.data()), data.size()});
}

class Base64Transform final : public SecTransform {
 public:
  using Conversion = Data (*)(std::span<const std::byte>);
  explicit Base64Transform(Conversion convert) : convert_(convert) {}

  bool setAttribute(std::string_view name, std::optional<Data> value) override {
    if (name != kSecTransformInputAttributeName) return false;
    input_ = std::move(value);
    return true;
  }

  std::optional<Data> execute() override {
    if (!input_) return std::nullopt;
    return convert_(*input_);
  }

 private:
  Conversion convert_;
  std::optional<Data> input_;
};

std::unique_ptr<SecTransform> transformFor(std::string_view encoding,
                                           Base64Transform::Conversion convert) {
  if (encoding != kSecBase64Encoding) return nullptr;
  return std::make_unique<Base64Transform>(convert);
}

}  // namespace

std::unique_ptr<SecTransform> SecEncodeTransformCreate(std::string_view encoding) {
  return transformFor(encoding, encoded);
}

std::unique_ptr<SecTransform> SecDecodeTransformCreate(std::string_view encoding) {
  return transformFor(encoding, decoded);
}

}  // namespace vornix
