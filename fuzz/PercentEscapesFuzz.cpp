#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/NSString+URLAdditions.h"
#include "fuzz/support/Require.h"
#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

using namespace vornix;

namespace {

// Well-formedness, character by character.
bool isWellFormed(std::string_view text) {
  while (!text.empty()) {
    const auto character = text::decodeCharacter(text);
    const bool isSurrogate = character.codePoint >= 0xD800 && character.codePoint <= 0xDFFF;
    if (!character.wellFormed || isSurrogate) return false;
    text.remove_prefix(character.length);
  }
  return true;
}

std::string_view withoutByteOrderMark(std::string_view text) {
  return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

void checkEncoding(std::string_view text, const std::optional<std::string>& escaped) {
  fuzz::require(escaped.has_value() == isWellFormed(text));
  if (!escaped) return;
  fuzz::require(escaped->size() <= text.size() * 3);
  fuzz::require(text::bytesOfPercentEscapes(*escaped) == text);
  fuzz::require(text::replacingPercentEscapes(*escaped) == withoutByteOrderMark(text));
}

void checkDecoding(std::string_view text) {
  const auto decoded = text::replacingPercentEscapes(text);
  const auto bytes = text::bytesOfPercentEscapes(text);
  const bool isText = bytes && isWellFormed(text) && isWellFormed(*bytes);
  fuzz::require(decoded.has_value() == isText);
  if (decoded) fuzz::require(*decoded == withoutByteOrderMark(*bytes));
}

}  // namespace

// Whatever is escaped comes back, and what is decoded is a text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  fuzz::require(text::isValidUtf8(text) == isWellFormed(text));
  checkEncoding(text, text::addingPercentEscapes(text));
  checkEncoding(text, stringByEncodingURLEscapes(text));
  checkDecoding(text);
  static_cast<void>(stringByDecodingURLEscapes(text));
  return 0;
}
