#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

// Base64 as slow and as plain as can be, bit by bit: what the fast one is compared with.
namespace vornix::tests {

inline constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline std::string plainBase64Encode(const Data& data) {
  std::string text;
  const auto bitAt = [&data](std::size_t bit) {
    if (bit / 8 >= data.size()) return std::size_t{0};
    return std::to_integer<std::size_t>(data[bit / 8] >> (7 - bit % 8)) & 1U;
  };
  for (std::size_t bit = 0; bit < data.size() * 8; bit += 6) {
    std::size_t value = 0;
    for (std::size_t next = bit; next < bit + 6; ++next) value = value * 2 + bitAt(next);
    text += kBase64Alphabet[value];
  }
  while (text.size() % 4 != 0) text += '=';
  return text;
}

inline Data plainBase64Decode(std::string_view text) {
  Data data;
  std::array<std::size_t, 4> stored{};
  std::size_t place = 0;
  std::size_t bits = 0;
  std::size_t count = 0;
  for (const char c : text.substr(0, text.find('='))) {
    if (c == ' ' || c == '\n' || c == '\r') continue;
    const auto value = kBase64Alphabet.find(c);
    if (value != std::string_view::npos) stored[place] = value;
    bits = bits << 6U | stored[place];
    count += 6;
    if (count >= 8) data.push_back(static_cast<std::byte>(bits >> (count -= 8)));
    place = (place + 1) % stored.size();
  }
  return data;
}

}  // namespace vornix::tests
