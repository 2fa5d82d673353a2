#include "tools/ctl/JsonText.h"

#include "platform/base/FileUrl.h"
#include "platform/base/Format.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"

namespace vornix::tools {
namespace {

void appendEscaped(std::string& json, char character) {
  switch (character) {
    case '"':
    case '\\':
      json += '\\';
      json += character;
      break;
    case '\n':
      json += "\\n";
      break;
    case '\t':
      json += "\\t";
      break;
    case '\r':
      json += "\\r";
      break;
    default:
      json += text::format("\\u%04x", static_cast<unsigned char>(character));
  }
}

bool needsEscape(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F || character == '"' || character == '\\';
}

std::string withoutIllFormedBytes(std::string_view bytes) {
  std::string result;
  while (!bytes.empty()) {
    const std::size_t length = text::decodeCharacter(bytes).length;
    const auto piece = bytes.substr(0, length);
    result += text::isValidUtf8(piece) ? piece : "\xEF\xBF\xBD";
    bytes.remove_prefix(length);
  }
  return result;
}

}  // namespace

std::string jsonString(std::string_view text) {
  std::string json = "\"";
  for (const char character : text) {
    if (needsEscape(character)) {
      appendEscaped(json, character);
    } else {
      json += character;
    }
  }
  return json + '"';
}

std::string jsonPath(std::string_view path) {
  if (text::isValidUtf8(path)) return jsonString(path);
  if (const auto url = text::fileUrlWithPath(path, false)) return jsonString(*url);
  return jsonString(withoutIllFormedBytes(path));
}

}  // namespace vornix::tools
