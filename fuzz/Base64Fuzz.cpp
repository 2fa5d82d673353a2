#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "foundation/NSString+Hashing.h"
#include "fuzz/support/Require.h"
#include "platform/base/Base64.h"
#include "platform/base/Text.h"
#include "tests/support/PlainBase64.h"

// The fast coder does what the plain one does with any bytes, and gives all data back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vornix;
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const Data decoded = tests::plainBase64Decode(text);
  fuzz::require(text::base64Decode(text) == decoded);
  fuzz::require(base64dec(text) ==
                (text::isValidUtf8(text) ? std::optional<Data>(decoded) : std::nullopt));

  const auto span = std::as_bytes(std::span(bytes, size));
  const Data data(span.begin(), span.end());
  const std::string encoded = base64enc(data);
  fuzz::require(encoded == tests::plainBase64Encode(data));
  fuzz::require(base64dec(encoded) == data);
  return 0;
}
