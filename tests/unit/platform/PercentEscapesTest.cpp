#include "platform/base/PercentEscapes.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "tests/support/RandomInput.h"

namespace vornix::text {
namespace {

using std::string_view_literals::operator""sv;

constexpr std::string_view kLettersAndDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

// Every byte of ASCII as it is where `kept` holds it, else escaped.
std::string asciiEscapedBut(std::string_view kept) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string escaped;
  for (unsigned char byte = 0; byte < 0x80; ++byte) {
    if (kept.find(static_cast<char>(byte)) != std::string_view::npos) {
      escaped += static_cast<char>(byte);
    } else {
      escaped += {'%', digits[byte >> 4U], digits[byte & 15U]};
    }
  }
  return escaped;
}

std::string everyAsciiCharacter() {
  std::string text;
  for (unsigned char byte = 0; byte < 0x80; ++byte) text += static_cast<char>(byte);
  return text;
}

TEST(PercentEscapes, KeepsLettersDigitsAndTheCharactersThatMayStandInAUrl) {
  const std::string kept = std::string(kLettersAndDigits) + "!$&'()*+,-./:;=?@_~";
  EXPECT_EQ(addingPercentEscapes(kept), kept);
  EXPECT_EQ(addingPercentEscapes(everyAsciiCharacter()), asciiEscapedBut(kept));
}

TEST(PercentEscapes, KeepsNothingButUnreservedCharactersInTheStricterForm) {
  const std::string kept = std::string(kLettersAndDigits) + "-._~";
  EXPECT_EQ(addingPercentEscapesToAllButUnreserved(kept), kept);
  EXPECT_EQ(addingPercentEscapesToAllButUnreserved(everyAsciiCharacter()), asciiEscapedBut(kept));
}

struct Row {
  std::string_view text;
  std::string_view escaped;
  std::string_view escapedToAllButUnreserved;
};

TEST(PercentEscapes, WritesTheUtf8BytesOfWhatMayNotStand) {
  constexpr std::array rows{
      Row{"", "", ""},
      Row{"a b", "a%20b", "a%20b"},
      Row{"Tom & Jerry", "Tom%20&%20Jerry", "Tom%20%26%20Jerry"},
      Row{"%41", "%2541", "%2541"},
      Row{"100%", "100%25", "100%25"},
      Row{"a+b=c", "a+b=c", "a%2Bb%3Dc"},
      Row{"http://h:1/p?q#f", "http://h:1/p?q%23f", "http%3A%2F%2Fh%3A1%2Fp%3Fq%23f"},
      Row{"[x]{y}|z", "%5Bx%5D%7By%7D%7Cz", "%5Bx%5D%7By%7D%7Cz"},
      Row{"it's (so)!*", "it's%20(so)!*", "it%27s%20%28so%29%21%2A"},
      Row{"\u00E9", "%C3%A9", "%C3%A9"},
      Row{"e\u0301", "e%CC%81", "e%CC%81"},
      Row{"\u00DF\u0130\u03C2", "%C3%9F%C4%B0%CF%82", "%C3%9F%C4%B0%CF%82"},
      Row{"\u200B", "%E2%80%8B", "%E2%80%8B"},
      Row{"\uFEFF", "%EF%BB%BF", "%EF%BB%BF"},
      Row{"\uAC01", "%EA%B0%81", "%EA%B0%81"},
      Row{"\u1100\u1161", "%E1%84%80%E1%85%A1", "%E1%84%80%E1%85%A1"},
      Row{"\u05D0\u202E", "%D7%90%E2%80%AE", "%D7%90%E2%80%AE"},
      Row{"\U0001F600", "%F0%9F%98%80", "%F0%9F%98%80"},
      Row{"\U0010FFFF", "%F4%8F%BF%BF", "%F4%8F%BF%BF"},
      Row{"\xEF\xBF\xBE", "%EF%BF%BE", "%EF%BF%BE"},
      Row{"\xEF\xBF\xBF", "%EF%BF%BF", "%EF%BF%BF"},
      Row{"a\0b"sv, "a%00b", "a%00b"},
      Row{"\x7F\x01", "%7F%01", "%7F%01"},
      Row{"\r\n\t", "%0D%0A%09", "%0D%0A%09"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(addingPercentEscapes(row.text), row.escaped) << row.text;
    EXPECT_EQ(addingPercentEscapesToAllButUnreserved(row.text), row.escapedToAllButUnreserved)
        << row.text;
  }
}

constexpr std::array kIllFormed{
    "\x80"sv,                      // a tail without a lead
    "\xC3"sv,                      // cut short, by one to three bytes
    "a\xE2\x82"sv,                 //
    "\xF0\x9F\x98"sv,              //
    "\xF0"sv,                      //
    "\xC0\x80"sv,                  // overlong
    "\xC1\xBF"sv,                  //
    "\xE0\x9F\xBF"sv,              //
    "\xF0\x8F\xBF\xBF"sv,          //
    "\xED\xA0\x80"sv,              // surrogates, alone and as a pair
    "a\xED\xA0\xBD"sv,             //
    "\xED\xBF\xBFz"sv,             //
    "\xED\xA0\xBD\xED\xB8\x80"sv,  //
    "\xF4\x90\x80\x80"sv,          // above the last character
    "\xF5\x80\x80\x80"sv,          //
    "\xFE"sv,
    "\xFF"sv,
    "\xC3\x28"sv,              // a tail that is none
    "\xE2\x28\xA1"sv,          //
    "\xF0\x9F\x28\x80"sv,      //
    "\xC3\xA9\xA9"sv,          // a tail too many
    "abcdefghijklmnop\xC3"sv,  // around the end of sixteen bytes
    "abcdefghijklmno\xC3q"sv,  //
    "abcdefghijklmno\xC3"sv,   //
};

TEST(PercentEscapes, AnswersNothingForALoneSurrogateOrIllFormedBytes) {
  for (const std::string_view text : kIllFormed) {
    EXPECT_EQ(addingPercentEscapes(text), std::nullopt) << text;
    EXPECT_EQ(addingPercentEscapesToAllButUnreserved(text), std::nullopt) << text;
    EXPECT_EQ(replacingPercentEscapes(text), std::nullopt) << text;
  }
}

TEST(PercentEscapes, EscapesWhatIsWellFormedAcrossTheEndOfSixteenBytes) {
  for (std::size_t before = 0; before < 40; ++before) {
    const std::string plain(before, 'a');
    EXPECT_EQ(addingPercentEscapes(plain + "\U0001F600z"), plain + "%F0%9F%98%80z");
  }
}

struct Escaped {
  std::string_view escaped;
  std::optional<std::string_view> text;
};

TEST(PercentEscapes, ReplacesEscapesOneLevelDeep) {
  constexpr std::array rows{
      Escaped{"", ""},
      Escaped{"plain", "plain"},
      Escaped{"%20", " "},
      Escaped{"a%20b%20", "a b "},
      Escaped{"%41%62%7a%7A", "Abzz"},
      Escaped{"%2525", "%25"},
      Escaped{"%25%32%35", "%25"},
      Escaped{"+", "+"},
      Escaped{"%2B", "+"},
      Escaped{"%C3%A9", "\u00E9"},
      Escaped{"%c3%a9", "\u00E9"},
      Escaped{"e%CC%81", "e\u0301"},
      Escaped{"\u00E9%CC%81", "\u00E9\u0301"},
      Escaped{"%EA%B0%81", "\uAC01"},
      Escaped{"%F0%9F%98%80", "\U0001F600"},
      Escaped{"%F4%8F%BF%BF", "\U0010FFFF"},
      Escaped{"a%00b", "a\0b"sv},
      Escaped{"%EF%BF%BE%EF%BF%BF", "\xEF\xBF\xBE\xEF\xBF\xBF"},
      Escaped{"%ED%9F%BF%EE%80%80", "\xED\x9F\xBF\xEE\x80\x80"},
      Escaped{"%E2%80%8B", "\u200B"},
      Escaped{"%D7%90%E2%80%AE", "\u05D0\u202E"},
  };
  for (const Escaped& row : rows) EXPECT_EQ(replacingPercentEscapes(row.escaped), row.text);
}

TEST(PercentEscapes, AnswersNothingWhenOneEscapeIsBroken) {
  for (const auto text : {"%", "a%", "%4", "%4g", "%g4", "%%41", "%41%", "%+1", "% 1", "%-1", "%0x",
                          "%\u00E9", "good%20bad%2"}) {
    EXPECT_EQ(replacingPercentEscapes(text), std::nullopt) << text;
    EXPECT_EQ(bytesOfPercentEscapes(text), std::nullopt) << text;
  }
  EXPECT_EQ(replacingPercentEscapes("%4\0"sv), std::nullopt);
}

TEST(PercentEscapes, AnswersNothingWhenTheBytesTogetherAreNoStrictUtf8) {
  for (const auto* text :
       {"%80", "%C3", "%C3a", "a%C3%28", "%E2%82", "%F0%9F%98", "%C0%80", "%E0%80%80",
        "%F0%80%80%80", "%ED%A0%80", "%ED%BF%BF", "%ED%A0%BD%ED%B8%80", "%F4%90%80%80",
        "%F5%80%80%80", "%FF", "%FE%FF", "%C3%A9%A9"}) {
    EXPECT_EQ(replacingPercentEscapes(text), std::nullopt) << text;
    EXPECT_NE(bytesOfPercentEscapes(text), std::nullopt) << text;
  }
}

TEST(PercentEscapes, LetsRawBytesCompleteNoEscape) {
  EXPECT_EQ(replacingPercentEscapes("%C3\xA9"), std::nullopt);
  EXPECT_EQ(replacingPercentEscapes("\xC3%A9"), std::nullopt);
}

TEST(PercentEscapes, DropsAByteOrderMarkAtTheVeryStartOnly) {
  EXPECT_EQ(replacingPercentEscapes("%EF%BB%BFa"), "a");
  EXPECT_EQ(replacingPercentEscapes("\uFEFFa"), "a");
  EXPECT_EQ(replacingPercentEscapes("%EF%BB%BF"), "");
  EXPECT_EQ(replacingPercentEscapes("%EF%BB%BF%EF%BB%BFa"), "\uFEFFa");
  EXPECT_EQ(replacingPercentEscapes("a%EF%BB%BF"), "a\uFEFF");
  EXPECT_EQ(replacingPercentEscapes("%20\uFEFF"), " \uFEFF");
}

TEST(PercentEscapes, GivesAnyTextBackAfterEscaping) {
  tests::RandomInput random(1);
  for (std::size_t characters = 0; characters <= 300; ++characters) {
    const std::string text = "." + random.text(characters);
    for (const auto& escaped :
         {addingPercentEscapes(text), addingPercentEscapesToAllButUnreserved(text)}) {
      ASSERT_TRUE(escaped) << text;
      EXPECT_EQ(replacingPercentEscapes(*escaped), text);
    }
  }
}

TEST(PercentEscapes, GivesATextOfManyPiecesBackAfterEscaping) {
  tests::RandomInput random(2);
  const std::string text = "." + random.text(200'000);
  const auto escaped = addingPercentEscapesToAllButUnreserved(text);
  ASSERT_TRUE(escaped);
  EXPECT_EQ(replacingPercentEscapes(*escaped), text);
}

TEST(PercentEscapes, TakesTimeInProportionToHugeTexts) {
  constexpr std::size_t length = 1U << 20U;
  const std::string plain(length, 'a');
  EXPECT_EQ(addingPercentEscapes(plain), plain);
  EXPECT_EQ(replacingPercentEscapes(plain), plain);
  const auto escaped = addingPercentEscapes(std::string(length, ' '));
  ASSERT_TRUE(escaped);
  EXPECT_EQ(escaped->size(), length * 3);
  EXPECT_EQ(replacingPercentEscapes(*escaped), std::string(length, ' '));
  EXPECT_EQ(replacingPercentEscapes(*escaped + "%"), std::nullopt);
}

}  // namespace
}  // namespace vornix::text
