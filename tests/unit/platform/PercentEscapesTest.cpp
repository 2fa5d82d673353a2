#include "platform/base/PercentEscapes.h"

#include <gtest/gtest.h>

namespace vornix::text {
namespace {

TEST(PercentEscapes, KeepsLettersDigitsAndTheCharactersThatMayStandInAUrl) {
  constexpr auto* kept =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~";
  EXPECT_EQ(addingPercentEscapes(kept), kept);
}

TEST(PercentEscapes, EscapesEveryOtherAsciiCharacter) {
  EXPECT_EQ(addingPercentEscapes(" \"#%<>[\\]^`{|}"), "%20%22%23%25%3C%3E%5B%5C%5D%5E%60%7B%7C%7D");
  std::string controls;
  std::string expected;
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (int code = 0; code < 0x20; ++code) {
    controls += static_cast<char>(code);
    expected += '%';
    expected += digits[static_cast<std::size_t>(code) / 16];
    expected += digits[static_cast<std::size_t>(code) % 16];
  }
  EXPECT_EQ(addingPercentEscapes(controls + "\x7F"), expected + "%7F");
}

TEST(PercentEscapes, EscapesAnEscapeASecondTime) {
  EXPECT_EQ(addingPercentEscapes("%41"), "%2541");
}

TEST(PercentEscapes, WritesOtherCharactersAsTheirUtf8Bytes) {
  EXPECT_EQ(addingPercentEscapes("\u00E9"), "%C3%A9");
  EXPECT_EQ(addingPercentEscapes("e\u0301"), "e%CC%81");
  EXPECT_EQ(addingPercentEscapes("\U0001F600"), "%F0%9F%98%80");
  EXPECT_EQ(addingPercentEscapes("\xEF\xBF\xBE"), "%EF%BF%BE");
  EXPECT_EQ(addingPercentEscapes("\xEF\xBB\xBF"), "%EF%BB%BF");
}

TEST(PercentEscapes, AnswersNothingForALoneSurrogateOrIllFormedBytes) {
  EXPECT_EQ(addingPercentEscapes("a\xED\xA0\xBD"), std::nullopt);
  EXPECT_EQ(addingPercentEscapes("\xFF"), std::nullopt);
  EXPECT_EQ(addingPercentEscapes("a\xC3"), std::nullopt);
}

TEST(PercentEscapes, LeavesTheEmptyTextEmpty) {
  EXPECT_EQ(addingPercentEscapes(""), "");
}

}  // namespace
}  // namespace vornix::text
