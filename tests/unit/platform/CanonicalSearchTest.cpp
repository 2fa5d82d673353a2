#include "platform/text/CanonicalSearch.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <vector>

#include "platform/text/SequenceMatches.h"
#include "tests/support/CanonicalOracle.h"
#include "tests/support/RandomText.h"
#include "tests/support/Repeated.h"

namespace vornix::text {

void PrintTo(const ByteRange& range, std::ostream* out) {
  *out << range.offset << "+" << range.length;
}

namespace {

using tests::repeated;
using namespace std::string_view_literals;

std::optional<ByteRange> firstMatch(std::string_view text, std::string_view pattern) {
  return CanonicalMatches(text, pattern).next();
}

template <typename Matches>
std::vector<ByteRange> allMatches(std::string_view text, std::string_view pattern) {
  std::vector<ByteRange> found;
  Matches matches(text, pattern);
  while (const auto match = matches.next()) found.push_back(*match);
  return found;
}

struct Row {
  std::string_view text;
  std::string_view pattern;
  std::optional<ByteRange> expected;
};

constexpr auto kNone = std::nullopt;
constexpr std::optional<ByteRange> at(std::size_t offset, std::size_t length) {
  return ByteRange{offset, length};
}

void expectRows(std::span<const Row> rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(firstMatch(row.text, row.pattern), row.expected)
        << '"' << row.pattern << "\" in \"" << row.text << '"';
  }
}

TEST(CanonicalSearch, FindsTextAsItStands) {
  constexpr std::array rows{Row{"", "a", kNone},
                            Row{"a", "", kNone},
                            Row{"", "", kNone},
                            Row{"\u00E9", "", kNone},
                            Row{"abc", "abc", at(0, 3)},
                            Row{"abcabc", "ca", at(2, 2)},
                            Row{"ab", "abc", kNone},
                            Row{"ABC", "abc", kNone},
                            Row{"a\0b"sv, "\0b"sv, at(1, 2)},
                            Row{"caf\u00E9s", "\u00E9", at(3, 2)},
                            Row{"caf\u00E9s", "s", at(5, 1)},
                            Row{"\u00E9", "\u00E8", kNone},
                            Row{"\u05D0\u05D1\u05D2", "\u05D1\u05D2", at(2, 4)},
                            Row{"x\u200By", "\u200B", at(1, 3)},
                            Row{"\uFEFFx", "x", at(3, 1)},
                            Row{"\uFEFFx", "\uFEFF", at(0, 3)},
                            Row{"a\U0001F600b", "\U0001F600", at(1, 4)},
                            Row{"a\U0001F600b", "b", at(5, 1)}};
  expectRows(rows);
}

TEST(CanonicalSearch, TakesCanonicallyEquivalentTextsAsEqual) {
  constexpr std::array rows{
      Row{"caf\u00E9!", "e\u0301", at(3, 2)}, Row{"cafe\u0301!", "\u00E9", at(3, 3)},
      Row{"\uD55C\uAE00", "\u1112\u1161\u11AB", at(0, 3)},
      Row{"\u1112\u1161\u11AB\u1100\u1173\u11AF", "\uAE00", at(9, 9)},
      Row{"\u212Aelvin", "K", at(0, 3)}, Row{"Kelvin", "\u212A", at(0, 1)},
      Row{"\u212B", "A\u030A", at(0, 3)}, Row{"a;b", "\u037E", at(1, 1)},
      // Marks of different classes in either order.
      Row{"a\u0323\u0307", "a\u0307\u0323", at(0, 5)}, Row{"\u1E69", "s\u0307\u0323", at(0, 3)},
      // A compatibility ideograph, and one beyond the first plane.
      Row{"\uF900", "\u8C48", at(0, 3)}, Row{"\U0002F800", "\u4E3D", at(0, 4)},
      Row{"\U0001D15E", "\U0001D157\U0001D165", at(0, 4)}, Row{"\u0958", "\u0915\u093C", at(0, 3)},
      Row{"\u03C2", "\u03C3", kNone}, Row{"\u0130", "I\u0307", at(0, 2)}};
  expectRows(rows);
}

TEST(CanonicalSearch, KeepsTheOrderOfMarksOfOneClass) {
  constexpr std::array rows{Row{"a\u0301\u0300", "a\u0300\u0301", kNone},
                            Row{"a\u0301\u0300", "a\u0301\u0300", at(0, 5)}};
  expectRows(rows);
}

TEST(CanonicalSearch, FindsNothingWithinAComposedSequence) {
  constexpr std::array rows{Row{"e\u0301", "e", kNone},
                            Row{"\u00E9", "e", kNone},
                            Row{"e\u0301", "\u0301", kNone},
                            Row{"\u00E9", "\u0301", kNone},
                            Row{"/a/b\u0301", "/a/b", kNone},
                            Row{"a&\u0301b", "&", kNone},
                            Row{"a\u0301\u0323", "a\u0301", kNone},
                            Row{"x\uFE0F", "x", kNone},
                            Row{"1\u20E3", "1", kNone},
                            Row{"\u0915\u093E", "\u0915", kNone},
                            Row{"\uD55C", "\u1112\u1161", kNone},
                            Row{"\u1112\u1161\u11AB", "\uD558", kNone},
                            Row{"\u1112\u1161\u11AB", "\u1112", kNone},
                            Row{"\u1112\u1161\u11AB", "\u11AB", kNone},
                            Row{"\uD558\u11AB", "\uD558", kNone},
                            Row{"e\u0301 e", "e", at(4, 1)},
                            Row{"\uD558\uD558\u11AB", "\uD558\u11AB", at(3, 6)}};
  expectRows(rows);
}

TEST(CanonicalSearch, FindsAMarkThatFollowsNothing) {
  constexpr std::array rows{Row{"\u0301", "\u0301", at(0, 2)},
                            Row{"\u0323\u0301", "\u0301\u0323", at(0, 4)},
                            Row{"\xFF\u0301", "\u0301", at(1, 2)}, Row{"\u0301x", "x", at(2, 1)}};
  expectRows(rows);
}

TEST(CanonicalSearch, FoldsNeitherCaseNorWidthNorCompatibility) {
  constexpr std::array rows{Row{"\u00C9", "\u00E9", kNone},  Row{"\uFF21", "A", kNone},
                            Row{"\uFB00", "ff", kNone},      Row{"\u00DF", "ss", kNone},
                            Row{"stra\u00DFe", "SS", kNone}, Row{"\u2460", "1", kNone},
                            Row{"\u00B2", "2", kNone},       Row{"\u0131", "i", kNone}};
  expectRows(rows);
}

TEST(CanonicalSearch, TakesTheHalvesOfALineEndApart) {
  constexpr std::array rows{Row{"\u00E9\r\n", "\n", at(3, 1)}, Row{"a\r\n\u00E9", "\r", at(1, 1)},
                            Row{"a\r\nb", "\n", at(2, 1)}};
  expectRows(rows);
}

TEST(CanonicalSearch, IsNotBlockedByAJoinerBehindTheMatch) {
  constexpr std::array rows{Row{"\U0001F468\u200D\U0001F469", "\U0001F468", at(0, 4)},
                            Row{"a\u200D", "a", at(0, 1)},
                            Row{"\U0001F468\u200D\U0001F469", "\U0001F469", at(7, 4)}};
  expectRows(rows);
}

TEST(CanonicalSearch, FindsALoneSurrogateButNoHalfOfAPair) {
  constexpr std::array rows{Row{"a\xED\xA0\xBD!", "\xED\xA0\xBD", at(1, 3)},
                            Row{"\U0001F600", "\xED\xA0\xBD", kNone},
                            Row{"\U0001F600", "\xED\xB8\x80", kNone}};
  expectRows(rows);
}

TEST(CanonicalSearch, FindsNoIllFormedByte) {
  constexpr std::array rows{Row{"a\xFF", "\xFF", kNone},       Row{"\u00FF", "\xFF", kNone},
                            Row{"\xC3\xA9", "\xA9", kNone},    Row{"\xC3\xA9", "\xC3", kNone},
                            Row{"a\xFF", "a\xFF", kNone},      Row{"a\xFFz", "z", at(2, 1)},
                            Row{"ab\xFFz", "abz", kNone},      Row{"/a/caf\xE9", "/a", at(0, 2)},
                            Row{"\xF0\x9F\x98", "\x98", kNone}};
  expectRows(rows);
}

TEST(CanonicalSearch, FindsEveryMatchFromTheLeftWithoutOverlaps) {
  EXPECT_EQ(allMatches<CanonicalMatches>("aaaaa", "aa"), (std::vector<ByteRange>{{0, 2}, {2, 2}}));
  EXPECT_EQ(allMatches<CanonicalMatches>("\u00E9e\u0301\u00E9", "e\u0301"),
            (std::vector<ByteRange>{{0, 2}, {2, 3}, {5, 2}}));
  EXPECT_EQ(allMatches<CanonicalMatches>("\u00E9aaaaa", "aa"),
            (std::vector<ByteRange>{{2, 2}, {4, 2}}));
  EXPECT_TRUE(allMatches<CanonicalMatches>("abc", "x").empty());
}

TEST(CanonicalSearch, StaysAtTheEndOnceNothingIsFound) {
  CanonicalMatches ascii("aba", "b");
  EXPECT_TRUE(ascii.next());
  EXPECT_FALSE(ascii.next());
  EXPECT_FALSE(ascii.next());
  CanonicalMatches sequences("\u00E9b", "b");
  EXPECT_TRUE(sequences.next());
  EXPECT_FALSE(sequences.next());
  EXPECT_FALSE(sequences.next());
}

TEST(CanonicalSearch, AnswersForAsciiAsTheGeneralWayDoes) {
  constexpr std::array pieces{"a"sv, "b"sv, "ab"sv, "/"sv, "\0"sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 5000; ++round) {
    const std::string text = random.next(16);
    const std::string pattern = random.next(4);
    ASSERT_EQ(allMatches<CanonicalMatches>(text, pattern),
              allMatches<SequenceMatches>(text, pattern))
        << '"' << pattern << "\" in \"" << text << '"';
  }
}

TEST(CanonicalSearch, FindsInAnyTextWhatItWasMadeFrom) {
  constexpr std::array pieces{"a"sv,      "\u00E9"sv, "e\u0301"sv,    "\uD55C"sv, "\u11AB"sv,
                              "\u0323"sv, "\u200D"sv, "\U0001F600"sv, " "sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 2000; ++round) {
    const std::string pattern = "<" + random.next(5) + ">";
    const std::string before = random.next(5);
    const std::string text = before + pattern + "." + random.next(5);
    ASSERT_EQ(firstMatch(text, pattern), at(before.size(), pattern.size())) << text;
  }
}

TEST(CanonicalSearch, FindsWhatASearchByHandFinds) {
  constexpr std::array pieces{
      "a"sv,          "e"sv,          "e\u0301"sv,    "\u00E9"sv, "\u0301"sv,
      "\u0323"sv,     "\u1EB9"sv,     "\uD558"sv,     "\uD55C"sv, "\u1112"sv,
      "\u1161"sv,     "\u11AB"sv,     "\u212A"sv,     "K"sv,      "\u200D"sv,
      "\uFE0F"sv,     "\u0915"sv,     "\u093E"sv,     "\u0958"sv, "\u093C"sv,
      "\U0001D15E"sv, "\U0001D157"sv, "\U0001D165"sv, "\xFF"sv,   "\xED\xA0\x80"sv};
  int matches = 0;
  for (std::uint32_t seed = 1; seed <= 20'000; ++seed) {
    // A few pieces at a time, so that matches are frequent.
    tests::RandomText choice(pieces, seed);
    std::array<std::string_view, 4> few;
    for (auto& piece : few) piece = pieces[choice.below(pieces.size())];
    tests::RandomText random(few, seed);
    const std::string text = random.next(8);
    const std::string pattern = random.next(2) + random.next(1);
    if (pattern.empty()) continue;
    CanonicalMatches found(text, pattern);
    std::size_t from = 0;
    for (bool more = true; more;) {
      const auto expected = tests::firstMatchByHand(text, pattern, from);
      ASSERT_EQ(found.next(), expected) << '"' << pattern << "\" in \"" << text << '"';
      more = expected.has_value();
      if (more) from = expected->offset + expected->length;
      matches += more ? 1 : 0;
    }
  }
  EXPECT_GT(matches, 5000);
}

// Each of these takes minutes where the work grows with the product of the lengths.
TEST(CanonicalSearch, StaysLinearWhereAlmostEveryPlaceAlmostMatches) {
  const std::string letters = repeated("\u00E1", 100'000);
  EXPECT_EQ(firstMatch(letters, repeated("a\u0301", 50'000) + "b"), kNone);
  EXPECT_EQ(firstMatch(letters + "b", repeated("a\u0301", 50'000) + "b"), at(100'000, 100'001));
  const std::string ascii = repeated("a", 1'000'000);
  EXPECT_EQ(firstMatch(ascii, repeated("a", 500'000) + "b"), kNone);
}

TEST(CanonicalSearch, StaysLinearForOneEndlessComposedSequence) {
  const std::string marks = "a" + repeated("\u0301\u0323", 50'000);
  EXPECT_EQ(firstMatch(marks, "a\u0301"), kNone);
  EXPECT_EQ(firstMatch(marks + "b", "b"), at(marks.size(), 1));
  const std::string reordered = "a" + repeated("\u0323", 50'000) + repeated("\u0301", 50'000);
  EXPECT_EQ(firstMatch(marks, reordered), at(0, marks.size()));
}

}  // namespace
}  // namespace vornix::text
