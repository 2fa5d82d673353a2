#include "platform/base/Utf8.h"

#include <cstdint>
#include <cstring>

#include "platform/base/Utf16.h"

namespace vornix::text {
namespace {

struct Form {
  std::size_t length;
  unsigned char leadMask;
  char32_t smallest;
};

Form formOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0x7F, 0};
  if (lead >= 0xC2 && lead < 0xE0) return {2, 0x1F, 0x80};
  if (lead >= 0xE0 && lead < 0xF0) return {3, 0x0F, 0x800};
  if (lead >= 0xF0 && lead < 0xF5) return {4, 0x07, 0x10000};
  return {0, 0, 0};
}

}  // namespace

DecodedCharacter decodeCharacter(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  const DecodedCharacter illFormed{lead, 1, false};
  const Form form = formOf(lead);
  if (form.length == 0 || bytes.size() < form.length) return illFormed;
  char32_t codePoint = lead & form.leadMask;
  for (std::size_t index = 1; index < form.length; ++index) {
    const auto byte = static_cast<unsigned char>(bytes[index]);
    if ((byte & 0xC0U) != 0x80U) return illFormed;
    codePoint = (codePoint << 6U) | (byte & 0x3FU);
  }
  if (codePoint < form.smallest || codePoint > 0x10FFFF) return illFormed;
  return {codePoint, form.length, true};
}

void appendCharacter(std::string& text, char32_t codePoint) {
  const auto tail = [&text, codePoint](unsigned shift) {
    text += static_cast<char>(0x80U | ((codePoint >> shift) & 0x3FU));
  };
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    text += static_cast<char>(0xC0U | (codePoint >> 6U));
    tail(0);
  } else if (codePoint < 0x10000) {
    text += static_cast<char>(0xE0U | (codePoint >> 12U));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0U | (codePoint >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::u16string utf16Units(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const DecodedCharacter character = decodeCharacter(text);
    appendUnits(units, character.codePoint);
    text.remove_prefix(character.length);
  }
  return units;
}

bool isAscii(std::string_view text) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  while (text.size() >= sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), sizeof word);
    if ((word & highBits) != 0) return false;
    text.remove_prefix(sizeof word);
  }
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

bool hasIllFormedByte(std::string_view text) {
  if (isAscii(text)) return false;
  while (!text.empty()) {
    const DecodedCharacter character = decodeCharacter(text);
    if (!character.wellFormed) return true;
    text.remove_prefix(character.length);
  }
  return false;
}

}  // namespace vornix::text
