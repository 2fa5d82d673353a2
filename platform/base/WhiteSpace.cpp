#include "platform/base/WhiteSpace.h"

namespace vornix::text {

bool isWhiteSpaceOrNewline(char32_t character) {
  const char32_t c = character;
  return c == 0x09 || c == 0x20 || isNewline(c) || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200B) || c == 0x202F || c == 0x205F || c == 0x3000;
}

bool isNewline(char32_t character) {
  const char32_t c = character;
  return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

}  // namespace vornix::text
