#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>

#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+Regex.h"
#include "foundation/NumberedCopyExpressions.h"
#include "foundation/ResourceNameComparison.h"
#include "tests/support/RandomText.h"
#include "tests/support/Repeated.h"

namespace vornix {
namespace {

using tests::repeated;
using namespace std::string_view_literals;

struct Row {
  std::string_view receiver;
  std::string_view other;
  int expected;
};

void expectRows(std::span<const Row> rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(compareApplicationResourceNameByWords(row.receiver, row.other, " "), row.expected)
        << '"' << row.receiver << "\" and \"" << row.other << '"';
  }
}

TEST(NSStringNameComparison, MatchesTheSameWordsInAnyOrder) {
  constexpr std::array rows{Row{"disk utility", "utility disk", 0},
                            Row{"disk utility", "disk utility", 0}, Row{"a b c", "c b a", 0}};
  expectRows(rows);
}

TEST(NSStringNameComparison, DoesNotMatchANumberedCopy) {
  constexpr std::array rows{Row{"disk utility", "disk utility 2", -1},
                            Row{"disk utility", "disk utility2 disk utility", -1},
                            Row{"a", "a    7", -1},
                            Row{"a", "a1 a", -1},
                            Row{"a", "A 1", -1},
                            Row{"a", "xa 1 a", -1},
                            Row{"a", "1 a", 0},
                            Row{"a", "a b 1", 0},
                            Row{"a", "a\t1 a", 0},
                            Row{"1", "1 1", -1},
                            Row{"1", "1", 0},
                            Row{"1", "11 1", -1}};
  expectRows(rows);
}

TEST(NSStringNameComparison, DoesNotMatchWhereAWordIsMissing) {
  constexpr std::array rows{Row{"disk utility", "disk", -1}, Row{"disk", "diskutility", -1},
                            Row{"disk", "", -1}, Row{"", "disk", -1}, Row{"a  b", "a b", -1}};
  expectRows(rows);
}

TEST(NSStringNameComparison, ComparesWholeWordsWithoutRegardToCaseOrderAndRepetition) {
  constexpr std::array rows{
      Row{"Disk Utility", "DISK uTILITY", 0}, Row{"disk", "disk utility", 0}, Row{"a a a", "a", 0},
      Row{"", "", 0}, Row{"", " a", 0}, Row{"", "a ", 0}, Row{"", " 1", -1}, Row{"a b", "b  a", 0},
      Row{"a  b", "b  a", 0}, Row{"a\0b"sv, "A\0B"sv, 0}, Row{"a\0b"sv, "a"sv, -1},
      Row{"\u00C9T\u00C9", "\u00E9t\u00E9", 0},
      // Words are compared literally, not by canonical equivalence.
      Row{"\u00E9", "e\u0301", -1}, Row{"\uD55C", "\u1112\u1161\u11AB", -1},
      Row{"\uD55C \uAE00", "\uAE00 \uD55C", 0},
      Row{"\u039F\u0394\u039F\u03A3", "\u03BF\u03B4\u03BF\u03C2", 0},
      Row{"\u039F\u0394\u039F\u03A3", "\u03BF\u03B4\u03BF\u03C3", -1}, Row{"\u0130", "i\u0307", 0},
      Row{"\u0130", "i", -1}, Row{"\u212A", "k", 0}, Row{"\u212B", "\u00E5", 0},
      // Lower-casing keeps the sharp s.
      Row{"\u00DF", "ss", -1}, Row{"\u1E9E", "\u00DF", 0}, Row{"\u05D0 \u05D1", "\u05D1 \u05D0", 0},
      Row{"a\u200B", "a", -1}, Row{"\uFEFFa", "a", -1}, Row{"a\u00A0b", "a b", -1},
      Row{"\U00010400", "\U00010428", 0}, Row{"\U0001F600", "x \U0001F600", 0},
      Row{"\xED\xA0\x80", "\xED\xA0\x80", 0}, Row{"a\xFF", "A\xFF", 0}, Row{"a\xFF", "a\xFE", -1}};
  expectRows(rows);
}

TEST(NSStringNameComparison, TakesTheReceiverAsPartOfARegularExpression) {
  constexpr std::array rows{// "." stands for any character in front of the number, not in a word.
                            Row{"a.c", "a.c abc1", -1}, Row{"a.c", "a.c abcd1", 0},
                            Row{"a|b", "a|b", 0},       Row{"a|b", "b1 a|b", -1},
                            Row{"a*", "a*", 0},         Row{"a*", "a* 1", -1},
                            Row{"a)(b", "a)(b", 0},     Row{"a)(b", "ab1 a)(b", -1},
                            Row{"[xy]", "[xy] z1", 0},  Row{"[xy]", "[xy] y1", -1}};
  expectRows(rows);
}

TEST(NSStringNameComparison, ComparesByWordsAloneWhereTheReceiverIsNoRegularExpression) {
  constexpr std::array rows{
      Row{"(a", "(a 1", 0},   Row{"a[", "a[ 1", 0},   Row{"{", "{ 1", 0},        Row{"}", "} 1", 0},
      Row{"a\\", "a\\ 1", 0}, Row{"*", "* 1", 0},     Row{"+", "+ 1", 0},        Row{"?", "? 1", 0},
      Row{"\\Q", "\\Q 1", 0}, Row{"a))", "a)) 1", 0}, Row{"a\xFF", "a\xFF 1", 0}};
  expectRows(rows);
}

TEST(NSStringNameComparison, FindsANumberBehindANameThatFoldsToTheReceiver) {
  constexpr std::array rows{
      Row{"stra\u00DFe", "STRASSE2 stra\u00DFe", -1}, Row{"stra\u00DFe", "STRASE2 stra\u00DFe", 0},
      Row{"k", "\u212A 1 k", -1}, Row{"s", "\u017F1 s", -1},
      // Half of a sharp s is no s.
      Row{"s", "\u00DF1 s", 0}, Row{"\u00E9", "\u00C9 7 \u00E9", -1},
      Row{"\u00E9", "e\u03011 \u00E9", 0},
      // Only ASCII digits make a number.
      Row{"a", "a\u0661 a", 0}, Row{"a", "a\u00A01 a", 0}, Row{"\uD55C", "\uD55C1 \uD55C", -1},
      Row{"\U00010400", "\U000104281 \U00010400", -1}};
  expectRows(rows);
}

TEST(NSStringNameComparison, SplitsAtTheSeparatorAsItStands) {
  struct Case {
    std::string_view receiver;
    std::string_view other;
    std::string_view separator;
    int expected;
  };
  constexpr std::array cases{
      Case{"a-b", "b-a", "-", 0}, Case{"a b", "b a", "-", -1}, Case{"a--b", "b--a", "--", 0},
      Case{"a-b", "b--a", "--", -1}, Case{"a b", "A B", "", 0}, Case{"a b", "b a", "", -1},
      Case{"axb", "bXa", "x", 0},
      // Both names are in lower case when they are split.
      Case{"aXb", "bXa", "X", -1}, Case{"aXb", "axb", "X", 0},
      Case{"a\u00E9b", "B\u00C9A", "\u00E9", 0}, Case{"a\u00C9b", "b\u00C9a", "\u00C9", -1},
      Case{"a e\u0301 b", "b \u00E9 a", "\u00E9", -1}, Case{"a\u200Bb", "b\u200Ba", "\u200B", 0},
      Case{"a\U0001F600b", "b\U0001F600a", "\U0001F600", 0}, Case{"a\0b"sv, "b\0a"sv, "\0"sv, 0},
      // An ill-formed byte is found nowhere, least of all within a character.
      Case{"a\xFF"
           "b",
           "b\xFF"
           "a",
           "\xFF", -1},
      Case{"\u00E9x", "x\u00E9", "\xA9", -1}, Case{"\xFF-a", "a-\xFF", "-", 0},
      Case{"\u05D0|\u05D1", "\u05D1|\u05D0", "|", 0}, Case{"\uD55C/x", "x/\uD55C", "/", 0}};
  for (const Case& c : cases) {
    EXPECT_EQ(compareApplicationResourceNameByWords(c.receiver, c.other, c.separator), c.expected)
        << '"' << c.receiver << "\" and \"" << c.other << "\" at \"" << c.separator << '"';
  }
}

TEST(NSStringNameComparison, ComparesAsciiAsTheGeneralWayDoes) {
  constexpr std::array pieces{"a"sv, "B"sv, "b"sv, " "sv, "1"sv, "-"sv, "ab"sv, "\0"sv, "["sv};
  constexpr std::array separators{" "sv, "-"sv, ""sv, "b"sv, "B"sv, " -"sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 5000; ++round) {
    const std::string name = random.next(4);
    const std::string other = random.next(10);
    const auto separator = separators[random.below(separators.size())];
    ASSERT_EQ(holdsEveryWord(other, name, separator),
              holdsEveryWordGenerally(other, name, separator))
        << '"' << name << "\" and \"" << other << "\" at \"" << separator << '"';
    ASSERT_EQ(holdsNumberedCopy(other, name), holdsNumberedCopyGenerally(other, name))
        << '"' << name << "\" and \"" << other << '"';
  }
}

TEST(NSStringNameComparison, FindsNumberedCopiesAsTheRegularExpressionDoes) {
  constexpr std::array pieces{"a"sv,
                              "S"sv,
                              "s"sv,
                              "\u00DF"sv,
                              "\u1E9E"sv,
                              "\u017F"sv,
                              "\u212A"sv,
                              "k"sv,
                              "\u0130"sv,
                              "i"sv,
                              "\u0307"sv,
                              "\u0131"sv,
                              "\uFB01"sv,
                              "\uFB00"sv,
                              "f"sv,
                              "\u03A3"sv,
                              "\u03C2"sv,
                              "\u0345"sv,
                              "\u1F88"sv,
                              "\u1F80"sv,
                              "\u0149"sv,
                              "\u02BC"sv,
                              "\u01C5"sv,
                              "\U00010400"sv,
                              "\U00010428"sv,
                              "\uD55C"sv,
                              "\u05D0"sv,
                              "\u200B"sv,
                              "\xED\xA0\x80"sv,
                              " "sv,
                              "1"sv,
                              "#"sv,
                              "\0"sv,
                              "-"sv,
                              "&"sv,
                              "\n"sv,
                              "~"sv};
  tests::RandomText random(pieces);
  int matches = 0;
  for (int round = 0; round < 20'000; ++round) {
    const std::string name = random.next(2);
    const std::string other =
        random.next(2) + (round % 2 == 0 ? name : random.next(2)) + random.next(2) + "1";
    const auto expression = numberedCopyExpression(name);
    ASSERT_NE(expression, nullptr) << name;
    const bool expected = isMatchedByRegex(other, *expression);
    ASSERT_EQ(holdsNumberedCopyGenerally(other, name), expected)
        << '"' << name << "\" and \"" << other << '"';
    matches += expected ? 1 : 0;
  }
  EXPECT_GT(matches, 1000);
}

TEST(NSStringNameComparison, KeepsTheExpressionsOfTheLatestNames) {
  const auto first = numberedCopyExpression("a.b");
  EXPECT_EQ(numberedCopyExpression("a.b"), first);
  for (int number = 0; number < 100; ++number) {
    static_cast<void>(numberedCopyExpression("a." + std::to_string(number)));
  }
  EXPECT_NE(numberedCopyExpression("a.b"), first);
  EXPECT_EQ(numberedCopyExpression("("), nullptr);
  EXPECT_EQ(numberedCopyExpression("("), nullptr);
}

// Each of these takes minutes where the work grows with the product of the lengths.
TEST(NSStringNameComparison, StaysLinearForManyWords) {
  std::string name;
  std::string other;
  for (int number = 0; number < 20'000; ++number) {
    name += "w" + std::to_string(number) + "x ";
    other += "w" + std::to_string(19'999 - number) + "x ";
  }
  EXPECT_EQ(compareApplicationResourceNameByWords(name, other, " "), 0);
  EXPECT_EQ(compareApplicationResourceNameByWords(name + "y", other, " "), -1);
}

TEST(NSStringNameComparison, StaysLinearForLongNames) {
  for (const std::string_view letter : {"a"sv, "1"sv, " "sv, "\u00E9"sv, "\u00DF"sv}) {
    const std::string name = repeated(letter, 30'000);
    const std::string other = repeated(letter, 60'000) + "x";
    EXPECT_FALSE(holdsNumberedCopy(other + repeated(" ", 1000), name + "y"));
    EXPECT_FALSE(holdsNumberedCopy(repeated(letter, 90'000), "y" + name));
    EXPECT_TRUE(holdsNumberedCopy(repeated(letter, 60'000) + "   7", name));
  }
  EXPECT_FALSE(holdsNumberedCopy(repeated("a ", 200'000) + "x", " "));
  EXPECT_FALSE(holdsNumberedCopy(repeated(" ", 400'000) + "x", " "));
}

}  // namespace
}  // namespace vornix
