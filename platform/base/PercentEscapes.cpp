#include "platform/base/PercentEscapes.h"

#include <array>
#include <cstdint>

#include "platform/base/Text.h"

namespace vornix::text {
namespace {

constexpr std::string_view kKeptPunctuation = "!$&'()*+,-./:;=?@_~";

constexpr std::array<bool, 256> keptBytes() {
  std::array<bool, 256> kept{};
  for (auto c = '0'; c <= '9'; ++c) kept[static_cast<std::uint8_t>(c)] = true;
  for (auto c = 'A'; c <= 'Z'; ++c) kept[static_cast<std::uint8_t>(c)] = true;
  for (auto c = 'a'; c <= 'z'; ++c) kept[static_cast<std::uint8_t>(c)] = true;
  for (const auto c : kKeptPunctuation) kept[static_cast<std::uint8_t>(c)] = true;
  return kept;
}

void appendEscape(std::string& text, std::uint8_t byte) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  text += '%';
  text += digits[byte >> 4U];
  text += digits[byte & 0xFU];
}

}  // namespace

std::optional<std::string> addingPercentEscapes(std::string_view text) {
  static constexpr auto kept = keptBytes();
  if (!isValidUtf8(text)) return std::nullopt;
  std::string escaped;
  escaped.reserve(text.size());
  for (const auto character : text) {
    const auto byte = static_cast<std::uint8_t>(character);
    if (kept[byte]) {
      escaped += character;
    } else {
      appendEscape(escaped, byte);
    }
  }
  return escaped;
}

}  // namespace vornix::text
