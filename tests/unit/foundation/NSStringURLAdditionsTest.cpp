#include "foundation/NSString+URLAdditions.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>

#include "platform/base/Text.h"
#include "tests/support/RandomText.h"
#include "tests/support/Repeated.h"
#include "tests/support/Sanitizers.h"

namespace vornix {
namespace {

using tests::repeated;
using namespace std::string_view_literals;

struct Row {
  std::string_view receiver;
  std::string_view target;
  std::string_view withString;
  std::string_view expected;
};

void expectRows(std::span<const Row> rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(stringByReplacingOccurrencesOfString(row.receiver, row.target, row.withString),
              row.expected)
        << '"' << row.target << "\" in \"" << row.receiver << '"';
  }
}

TEST(NSStringURLAdditions, ReplacesFromTheLeftWithoutLookingIntoWhatItInserted) {
  constexpr std::array rows{Row{"aaa", "aa", "a", "aa"},
                            Row{"aaaa", "aa", "a", "aa"},
                            Row{"a&b&", "&", "%26", "a%26b%26"},
                            Row{"&", "&", "&&", "&&"},
                            Row{"abc", "b", "", "ac"},
                            Row{"abc", "x", "y", "abc"},
                            Row{"", "x", "y", ""},
                            Row{"abc", "abc", "x", "x"},
                            Row{"a\0b"sv, "\0"sv, "0"sv, "a0b"sv},
                            Row{"aBc", "b", "x", "aBc"},
                            Row{"a+b+c", "+", " ", "a b c"}};
  expectRows(rows);
}

TEST(NSStringURLAdditions, ReplacesNothingForAnEmptyTarget) {
  constexpr std::array rows{Row{"abc", "", "x", "abc"}, Row{"", "", "x", ""},
                            Row{"\u00E9", "", "x", "\u00E9"}, Row{"\xFF", "", "x", "\xFF"}};
  expectRows(rows);
}

TEST(NSStringURLAdditions, ReplacesCanonicallyEquivalentTexts) {
  constexpr std::array rows{Row{"caf\u00E9 cafe\u0301", "\u00E9", "e", "cafe cafe"},
                            Row{"caf\u00E9 cafe\u0301", "e\u0301", "e", "cafe cafe"},
                            Row{"\uD55C\u1112\u1161\u11AB", "\uD55C", "x", "xx"},
                            Row{"\u212A", "K", "k", "k"},
                            Row{"a\u037Eb", ";", ",", "a,b"},
                            Row{"a\u0323\u0307", "a\u0307\u0323", "x", "x"},
                            Row{"\u03C3\u03C2", "\u03C3", "s", "s\u03C2"},
                            Row{"\u0130i", "I\u0307", "x", "xi"},
                            Row{"\u00DFss", "ss", "x", "\u00DFx"},
                            Row{"\u05D0\u05D1\u05D0", "\u05D0", "x", "x\u05D1x"},
                            Row{"a\u200Bb", "\u200B", "", "ab"},
                            Row{"\uFEFFa", "\uFEFF", "", "a"},
                            Row{"\U0001F600\U0001F600", "\U0001F600", ":)", ":):)"}};
  expectRows(rows);
}

TEST(NSStringURLAdditions, ReplacesNothingWithinAComposedSequence) {
  constexpr std::array rows{Row{"e\u0301e", "e", "x", "e\u0301x"},
                            Row{"&\u0301&", "&", "%26", "&\u0301%26"},
                            Row{"e\u0301", "\u0301", "", "e\u0301"},
                            Row{"\u1112\u1161\u11AB", "\u1161", "", "\u1112\u1161\u11AB"}};
  expectRows(rows);
}

TEST(NSStringURLAdditions, KeepsIllFormedBytesAndReplacesNoneOfThem) {
  constexpr std::array rows{
      Row{"a\xFFz", "\xFF", "x", "a\xFFz"}, Row{"a\xFFz", "z", "\xFE", "a\xFF\xFE"},
      Row{"\u00E9", "\xA9", "x", "\u00E9"}, Row{"a\xED\xA0\x80", "\xED\xA0\x80", "x", "ax"}};
  expectRows(rows);
}

TEST(NSStringURLAdditions, ReplacesInAsciiAsALiteralReplacementDoes) {
  constexpr std::array pieces{"a"sv, "b"sv, "ab"sv, "&"sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 3000; ++round) {
    const std::string text = random.next(12);
    const std::string target = random.next(3);
    ASSERT_EQ(stringByReplacingOccurrencesOfString(text, target, "a&"),
              text::replaceAll(text, target, "a&"));
    // The general way, behind a letter that no target holds.
    ASSERT_EQ(stringByReplacingOccurrencesOfString("\u00E9" + text, target, "a&"),
              "\u00E9" + text::replaceAll(text, target, "a&"));
  }
}

// A thread sanitizer takes minutes for more, and has one thread to look at.
constexpr std::size_t kManyPieces = tests::kUnderThreadSanitizer ? 10'000 : 50'000;

TEST(NSStringURLAdditions, ReplacesInAHugeTextInOnePass) {
  EXPECT_EQ(stringByReplacingOccurrencesOfString(repeated("&", 10 * kManyPieces), "&", "%26"),
            repeated("%26", 10 * kManyPieces));
  EXPECT_EQ(stringByReplacingOccurrencesOfString(repeated("\u00E9", kManyPieces), "e\u0301", "e"),
            repeated("e", kManyPieces));
}

TEST(NSStringURLAdditions, MakesAQueryOfADictionaryInItsOrder) {
  EXPECT_EQ(URLParamsStringWithDictionary({{"b", "2"}, {"a", "1"}}), "b=2&a=1");
  EXPECT_EQ(URLParamsStringWithDictionary({}), "");
}

TEST(NSStringURLAdditions, MakesQueriesOfKeysAndValues) {
  struct Case {
    std::string_view key;
    Value value;
    std::string_view expected;
  };
  const std::array cases{Case{"", "", "="},
                         Case{"a", "", "a="},
                         Case{"", "b", "=b"},
                         Case{"a b", "c d", "a%20b=c%20d"},
                         Case{"k", 5, "k=5"},
                         Case{"k", -3, "k=-3"},
                         Case{"k", 39.95, "k=39.95"},
                         Case{"k", true, "k=1"},
                         Case{"k", Null{}, "k=%3Cnull%3E"},
                         Case{"k", "100%", "k=100%25"},
                         Case{"k", "%41", "k=%2541"},
                         Case{"k", "a\0b"sv, "k=a%00b"},
                         Case{"\u00E9", "e\u0301", "%C3%A9=e%CC%81"},
                         Case{"k", "\uD55C", "k=%ED%95%9C"},
                         Case{"k", "\u05D0", "k=%D7%90"},
                         Case{"k", "\U0001F600", "k=%F0%9F%98%80"},
                         Case{"k", "\u200B\uFEFF", "k=%E2%80%8B%EF%BB%BF"},
                         Case{"k", "\u03A3\u0130\u00DF", "k=%CE%A3%C4%B0%C3%9F"},
                         Case{"k", "\n", "k=%0A"},
                         Case{"k", Array{1}, "k=(%0A%20%20%20%201%0A)"}};
  for (const Case& c : cases) {
    EXPECT_EQ(URLParamsStringWithDictionary({{std::string(c.key), c.value}}), c.expected) << c.key;
  }
}

TEST(NSStringURLAdditions, LeavesAmpersandEqualsAndPlusInAQueryAsTheyAre) {
  EXPECT_EQ(URLParamsStringWithDictionary({{"a&b", "c=d+e"}}), "a&b=c=d+e");
}

TEST(NSStringURLAdditions, WritesNullForWhatCannotBeEscaped) {
  EXPECT_EQ(URLParamsStringWithDictionary({{"k", "a\xED\xA0\x80"}}), "k=(null)");
  EXPECT_EQ(URLParamsStringWithDictionary({{"\xFF", "v"}, {"k", "\xC3"}}), "(null)=v&k=(null)");
}

}  // namespace
}  // namespace vornix
