#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "platform/system/Digest.h"

namespace vornix {
namespace {

std::string hexadecimal(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : md5Digest(bytes)) {
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

struct Vector {
  std::string_view message;
  std::string_view digest;
};

TEST(Digest, MatchesThePublishedTestVectors) {
  constexpr std::array vectors{
      Vector{"", "d41d8cd98f00b204e9800998ecf8427e"},
      Vector{"a", "0cc175b9c0f1b6a831c399e269772661"},
      Vector{"abc", "900150983cd24fb0d6963f7d28e17f72"},
      Vector{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      Vector{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      Vector{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
             "d174ab98d277d9f5a5611c2c9f419d9f"},
      Vector{"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
             "57edf4a22be3c955ac49da2e2107b67a"}};
  for (const Vector& vector : vectors) {
    EXPECT_EQ(hexadecimal(vector.message), vector.digest) << vector.message;
  }
}

TEST(Digest, CountsEmbeddedZeros) {
  EXPECT_NE(hexadecimal(std::string_view("a\0b", 3)), hexadecimal("a"));
  EXPECT_EQ(hexadecimal(std::string_view("\0", 1)), "93b885adfe0da089cdf634904fd59f71");
}

}  // namespace
}  // namespace vornix
