#include "platform/system/StringsFile.h"

#include <cstddef>
#include <string>
#include <utility>

#include "platform/base/Utf8.h"
#include "platform/system/TextPropertyList.h"

namespace vornix {
namespace {

std::string textFromUtf16(std::string_view bytes, bool bigEndian) {
  std::string text;
  char32_t high = 0;
  for (std::size_t index = 0; index + 1 < bytes.size(); index += 2) {
    const auto first = static_cast<unsigned char>(bytes[index]);
    const auto second = static_cast<unsigned char>(bytes[index + 1]);
    const auto unit =
        static_cast<char32_t>(bigEndian ? first << 8U | second : second << 8U | first);
    if (high != 0 && unit >= 0xDC00 && unit < 0xE000) {
      text::appendCharacter(text, 0x10000 + ((high - 0xD800) << 10U) + (unit - 0xDC00));
      high = 0;
      continue;
    }
    if (high != 0) text::appendCharacter(text, high);
    high = unit >= 0xD800 && unit < 0xDC00 ? unit : 0;
    if (high == 0) text::appendCharacter(text, unit);
  }
  if (high != 0) text::appendCharacter(text, high);
  return text;
}

std::string decoded(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return std::string(bytes.substr(3));
  if (bytes.starts_with("\xFE\xFF")) return textFromUtf16(bytes.substr(2), true);
  if (bytes.starts_with("\xFF\xFE")) return textFromUtf16(bytes.substr(2), false);
  return std::string(bytes);
}

}  // namespace

Dictionary parseStringsFile(std::string_view bytes) {
  const std::string text = decoded(bytes);
  TextPropertyListReader reader(text);
  Dictionary texts;
  for (reader.skipBlanks(); !reader.isAtEnd(); reader.skipBlanks()) {
    auto key = reader.readText();
    if (!key) {
      reader.skipBehind(';');
      continue;
    }
    auto value = reader.take('=') ? reader.readText() : key;
    if (value) texts.set(*key, std::move(*value));
    if (!reader.take(';')) reader.skipBehind(';');
  }
  return texts;
}

}  // namespace vornix
