#include "foundation/NSString+NSStringAdditions.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/RandomText.h"
#include "tests/support/Repeated.h"

namespace vornix {
namespace {

using tests::repeated;
using namespace std::string_view_literals;

constexpr std::array kPieces{"a"sv,      "B"sv,      " "sv,        "\n"sv,          "\t"sv,
                             "-_,.:;"sv, "\0"sv,     "\u00A0"sv,   "\u200B"sv,      "\uFEFF"sv,
                             "\u2029"sv, "\u0301"sv, "\uD55C"sv,   "\U0001F600"sv,  "\u05D0"sv,
                             "\xFF"sv,   "\xC2"sv,   "\xE2\x80"sv, "\xED\xA0\x80"sv};

constexpr std::size_t kMany = 500'000;

struct Row {
  std::string_view receiver;
  std::string_view expected;
};

TEST(NSStringAdditions, RemovesSpacesAndTheirKin) {
  constexpr std::array rows{
      Row{"", ""}, Row{"abc", "abc"}, Row{" ", ""}, Row{" -_,.:;\n", ""},
      Row{"a b-c_d,e.f:g;h\ni", "abcdefghi"}, Row{"  a  ", "a"}, Row{"a\tb", "a\tb"},
      Row{"a\rb", "a\rb"}, Row{"a\r\nb", "a\rb"}, Row{"a\0 b"sv, "a\0b"sv},
      Row{"a\u00A0b", "a\u00A0b"}, Row{"a\u200Bb", "a\u200Bb"}, Row{"\uFEFF a", "\uFEFFa"},
      Row{"a\u2010b", "a\u2010b"},
      // A mark stands for itself, also behind a character that goes.
      Row{"a \u0301b", "a\u0301b"}, Row{"\u00E9 e\u0301", "\u00E9e\u0301"},
      Row{"\uD55C \uAE00", "\uD55C\uAE00"}, Row{"\u05D0-\u05D1", "\u05D0\u05D1"},
      Row{"\U0001F600.\U0001F600", "\U0001F600\U0001F600"},
      Row{"\u03A3;\u0130:\u00DF", "\u03A3\u0130\u00DF"},
      Row{"\xFF \xC3-\xED\xA0\x80", "\xFF\xC3\xED\xA0\x80"}};
  for (const auto& [receiver, expected] : rows) {
    EXPECT_EQ(stringByRemovingSpaces(receiver), expected) << receiver;
  }
}

TEST(NSStringAdditions, RemovesNothingMoreTheSecondTime) {
  tests::RandomText random(kPieces);
  for (int round = 0; round < 2000; ++round) {
    const std::string once = stringByRemovingSpaces(random.next(12));
    ASSERT_EQ(stringByRemovingSpaces(once), once);
    ASSERT_EQ(once.find_first_of(" -_,.:;\n"), std::string::npos);
  }
}

TEST(NSStringAdditions, SubstitutesEveryCharacterOfTheSet) {
  struct Case {
    std::string_view receiver;
    std::string_view substitute;
    std::string_view characters;
    std::string_view expected;
  };
  constexpr std::array cases{
      Case{"", "x", "a", ""}, Case{"abc", "x", "", "abc"}, Case{"abc", "x", "z", "abc"},
      Case{"abc", "", "b", "ac"}, Case{"a/b:c", "-", "/:", "a-b-c"},
      Case{"aaa", "xy", "a", "xyxyxy"}, Case{"a\0b"sv, "?", "\0"sv, "a?b"},
      Case{"a\u00E9b", "e", "\u00E9", "aeb"},
      // A set knows code points, not composed sequences.
      Case{"e\u0301", "E", "e", "E\u0301"}, Case{"e\u0301", "", "\u0301", "e"},
      Case{"\u00E9", "", "\u0301", "\u00E9"}, Case{"\uD55C\uAE00", "x", "\uAE00", "\uD55Cx"},
      Case{"\uD55C", "x", "\u1112", "\uD55C"},
      Case{"\u03A3\u03C3\u03C2", "s", "\u03C2", "\u03A3\u03C3s"},
      Case{"\u0130I", "i", "\u0130", "iI"}, Case{"stra\u00DFe", "ss", "\u00DF", "strasse"},
      Case{"a\u200Bb", "", "\u200B", "ab"}, Case{"\uFEFFa", "", "\uFEFF", "a"},
      Case{"\u05D0\u200F\u05D1", "", "\u200F", "\u05D0\u05D1"},
      Case{"x\U0001F600y", ":)", "\U0001F600", "x:)y"},
      Case{"x\U0001F600y", "!", "\xED\xA0\xBD", "x\U0001F600y"},
      Case{"x\xED\xA0\xBDy", "!", "\xED\xA0\xBD", "x!y"}, Case{"x\xE9y", "!", "\u00E9", "x\xE9y"},
      Case{"x\xE9y", "!", "\xE9", "x\xE9y"}};
  for (const Case& c : cases) {
    const auto set = NSCharacterSet::characterSetWithCharactersInString(c.characters);
    EXPECT_EQ(stringWithSubstitute(c.receiver, c.substitute, set), c.expected) << c.receiver;
  }
}

TEST(NSStringAdditions, SubstitutesByTheSetsOfThePlatform) {
  const auto digits = NSCharacterSet::decimalDigitCharacterSet();
  EXPECT_EQ(stringWithSubstitute("a1\u0663\uFF15b", "#", digits), "a###b");
  EXPECT_EQ(stringWithSubstitute("a1\u0663\xE9\u00E9", "", digits.invertedSet()), "1\u0663\xE9");
}

TEST(NSStringAdditions, SubstitutesAsIfItSearchedFromTheStartAfterEachReplacement) {
  constexpr std::array pieces{"a"sv,      "/"sv,          ":"sv,   "\u00E9"sv,
                              "\u0301"sv, "\U0001F600"sv, "\xFF"sv};
  const auto set = NSCharacterSet::characterSetWithCharactersInString("/:\u00E9\U0001F600");
  tests::RandomText random(pieces);
  for (int round = 0; round < 1000; ++round) {
    const std::string text = random.next(10);
    std::string restarted = text;
    for (bool found = true; found;) {
      found = false;
      for (std::size_t at = 0; at < restarted.size() && !found;) {
        const auto character = text::decodeCharacter(std::string_view(restarted).substr(at));
        found = set.characterIsMember(character);
        if (found) restarted.replace(at, character.length, "xy");
        at += character.length;
      }
    }
    ASSERT_EQ(stringWithSubstitute(text, "xy", set), restarted) << text;
  }
}

TEST(NSStringAdditions, AnswersTheReceiverWhereNothingIsSubstituted) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString("z");
  tests::RandomText random(kPieces);
  for (int round = 0; round < 500; ++round) {
    const std::string text = random.next(12);
    ASSERT_EQ(stringWithSubstitute(text, "x", set), text);
  }
}

TEST(NSStringAdditions, SubstitutesInOnePassThroughAHugeText) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString("a");
  EXPECT_EQ(stringWithSubstitute(repeated("a", 2 * kMany), "bb", set), repeated("b", 4 * kMany));
}

TEST(NSStringAdditions, TrimsWhiteSpaceAndLineEndsAtBothEnds) {
  constexpr std::array rows{Row{"", ""},
                            Row{" ", ""},
                            Row{"\t\n\v\f\r ", ""},
                            Row{"a", "a"},
                            Row{" a b ", "a b"},
                            Row{"\r\na\r\n", "a"},
                            Row{"\u00A0a\u00A0", "a"},
                            Row{"\u0085a", "a"},
                            Row{"\u1680\u2000\u2009\u202F\u205F\u3000a", "a"},
                            Row{"a\u2028\u2029", "a"},
                            Row{"\u200Ba\u200B", "a"},
                            Row{"\uFEFFa", "\uFEFFa"},
                            Row{"\u2060a\u180E", "\u2060a\u180E"},
                            Row{"\x1C"
                                "a\x1F",
                                "\x1C"
                                "a\x1F"},
                            Row{"\0 a"sv, "\0 a"sv},
                            Row{" \u0301", "\u0301"},
                            Row{" e\u0301 ", "e\u0301"},
                            Row{" \uD55C ", "\uD55C"},
                            Row{" \u05D0 ", "\u05D0"},
                            Row{" \U0001F600 ", "\U0001F600"},
                            Row{" \xFF ", "\xFF"},
                            Row{" \xC2 ", "\xC2"},
                            Row{"\xE2\x80", "\xE2\x80"},
                            Row{" \xED\xA0\x80 ", "\xED\xA0\x80"}};
  for (const auto& [receiver, expected] : rows) {
    EXPECT_EQ(trimWhiteSpace(receiver), expected) << receiver;
  }
}

TEST(NSStringAdditions, TrimsNothingMoreTheSecondTime) {
  tests::RandomText random(kPieces);
  for (int round = 0; round < 2000; ++round) {
    const std::string once = trimWhiteSpace(random.next(12));
    ASSERT_EQ(trimWhiteSpace(once), once);
  }
}

TEST(NSStringAdditions, TrimsAHugeText) {
  const std::string blanks = repeated("\u3000", kMany);
  EXPECT_EQ(trimWhiteSpace(blanks + "a" + blanks), "a");
}

}  // namespace
}  // namespace vornix
