#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "platform/base/Utf8.h"
#include "platform/base/Value.h"

// Input for tests of properties. One seed gives the same input in every run.
namespace vornix::tests {

class RandomInput {
 public:
  explicit RandomInput(std::uint32_t seed) : engine_(seed) {}

  // Between 0 and `last`, both included.
  std::size_t upTo(std::size_t last) {
    return std::uniform_int_distribution<std::size_t>(0, last)(engine_);
  }

  Data bytes(std::size_t count) {
    Data data(count);
    for (std::byte& byte : data) byte = static_cast<std::byte>(upTo(0xFF));
    return data;
  }

  // Well-formed, of characters with one to four bytes each, zeros and noncharacters among them.
  std::string text(std::size_t characters) {
    constexpr std::array<char32_t, 4> lasts{0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
    std::string text;
    while (characters > 0) {
      const auto codePoint = static_cast<char32_t>(upTo(lasts[upTo(lasts.size() - 1)]));
      if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
      text::appendCharacter(text, codePoint);
      --characters;
    }
    return text;
  }

 private:
  std::mt19937 engine_;
};

}  // namespace vornix::tests
