#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <span>
#include <string>

#include "foundation/NSString+NSStringAdditions.h"
#include "tests/support/Repeated.h"

namespace vornix {
namespace {

using namespace std::string_view_literals;
using tests::repeated;

constexpr std::size_t kMany = 500'000;

struct Row {
  std::string_view receiver;
  std::string_view expected;
};

struct WordsRow {
  std::string_view receiver;
  std::int32_t words;
  std::string_view expected;
};

void expectWords(std::span<const WordsRow> rows) {
  for (const WordsRow& row : rows) {
    EXPECT_EQ(ellipsizeAfterNWords(row.receiver, row.words), row.expected)
        << '"' << row.receiver << "\" " << row.words;
  }
}

TEST(NSStringWordsAndTags, KeepsTheFirstWords) {
  constexpr std::array rows{
      WordsRow{"one two three", 2, "one two"},
      WordsRow{"one two three", 1, "one"},
      WordsRow{"one two three", 3, "one two three"},
      WordsRow{"one two three", 4, "one two three"},
      WordsRow{"one", 1, "one"},
      WordsRow{"", 1, ""},
      WordsRow{"", 5, ""},
      WordsRow{"a\tb c", 1, "a\tb"},
      WordsRow{"a\nb c", 1, "a\nb"},
      WordsRow{"a\u00A0b c", 1, "a\u00A0b"},
      WordsRow{"a\u200Bb c", 1, "a\u200Bb"},
      WordsRow{"a\0b c"sv, 1, "a\0b"sv},
      WordsRow{"\u00E9 e\u0301 x", 2, "\u00E9 e\u0301"},
      WordsRow{"\uD55C \uAE00", 1, "\uD55C"},
      WordsRow{"\u05D0 \u05D1", 1, "\u05D0"},
      WordsRow{"\U0001F600 \U0001F601", 1, "\U0001F600"},
      WordsRow{"\uFEFF a", 1, "\uFEFF"},
      WordsRow{"\xFF \xC3 a", 2, "\xFF \xC3"},
      WordsRow{"\xED\xA0\x80 a", 1, "\xED\xA0\x80"},
      WordsRow{"one two", std::numeric_limits<std::int32_t>::max(), "one two"}};
  expectWords(rows);
}

TEST(NSStringWordsAndTags, CountsTheEmptyPiecesBetweenSpacesAsWords) {
  constexpr std::array rows{WordsRow{" a b", 1, ""},   WordsRow{" a b", 2, " a"},
                            WordsRow{"a  b", 2, "a "}, WordsRow{"a  b", 3, "a  b"},
                            WordsRow{"a ", 1, "a"},    WordsRow{"a ", 2, "a "},
                            WordsRow{"   ", 2, " "},   WordsRow{"   ", 4, "   "}};
  expectWords(rows);
}

TEST(NSStringWordsAndTags, KeepsNoWordForZero) {
  constexpr std::array rows{WordsRow{"one two three", 0, ""}, WordsRow{"", 0, ""},
                            WordsRow{" ", 0, ""}};
  expectWords(rows);
}

TEST(NSStringWordsAndTags, KeepsEveryWordForANegativeCount) {
  constexpr std::array rows{WordsRow{"one two three", -1, "one two three"},
                            WordsRow{" a  b ", std::numeric_limits<std::int32_t>::min(), " a  b "}};
  expectWords(rows);
}

TEST(NSStringWordsAndTags, LeavesOneSpaceWhereEachTagStood) {
  EXPECT_EQ(stripHTML("a<b>c</b>d"), "a c d");
}

TEST(NSStringWordsAndTags, StripsTags) {
  constexpr std::array rows{
      Row{"", ""}, Row{"plain", "plain"}, Row{"<br>", " "}, Row{"<br/>a", " a"},
      Row{"a<b><i>c", "a  c"}, Row{"a<b", "a"}, Row{"a<<b>c>d", "a d"}, Row{"<a <b> c>", " "},
      Row{"<a href=\"x>y\">z", " y\""}, Row{"a&lt;b", "a&lt;b"}, Row{"<\0>x"sv, " x"},
      Row{"a\0b"sv, "a\0b"sv}, Row{"\u00E9<b>e\u0301</b>", "\u00E9 e\u0301 "},
      Row{"<b>\u0301", " \u0301"},
      // A mark behind a bracket is a character of its own.
      Row{"a<\u0301>b", "a b"}, Row{"\uD55C<br>\uAE00", "\uD55C \uAE00"},
      Row{"\u05D0<br>\u05D1", "\u05D0 \u05D1"},
      Row{"\U0001F600<i>\U0001F601</i>", "\U0001F600 \U0001F601 "},
      Row{"\uFF1Cb\uFF1E", "\uFF1Cb\uFF1E"}, Row{"\uFEFF<p>\u200B", "\uFEFF \u200B"},
      Row{"\xFF<b>\xC3</b>\xED\xA0\x80", "\xFF \xC3 \xED\xA0\x80"}};
  for (const auto& [receiver, expected] : rows) {
    EXPECT_EQ(stripHTML(receiver), expected) << receiver;
  }
}

TEST(NSStringWordsAndTags, DropsTextBehindAStrayClosingBracketUpToTheNextOpeningOne) {
  constexpr std::array rows{Row{"a>b<c", "ac"}, Row{"a>b", "a"},      Row{">", ""},
                            Row{"><", ""},      Row{">><a<b", "b"},   Row{"a>b<c<d>e", "ac e"},
                            Row{">a<b>c", "b"}, Row{">>a<b<c>d", "c"}};
  for (const auto& [receiver, expected] : rows) {
    EXPECT_EQ(stripHTML(receiver), expected) << receiver;
  }
}

TEST(NSStringWordsAndTags, StripsAHugeTextInOnePass) {
  EXPECT_EQ(stripHTML(repeated("<b>", kMany)), repeated(" ", kMany));
  EXPECT_EQ(stripHTML(repeated("<", 2 * kMany) + repeated(">", 2 * kMany)), " ");
}

TEST(NSStringWordsAndTags, TakesAMissingStringAndBlanksAsEmpty) {
  EXPECT_TRUE(stringIsEmpty(std::nullopt));
  for (const std::string_view blank :
       {""sv, " "sv, "\t"sv, "\n"sv, "\r\n"sv, "\v\f"sv, "\u0085"sv, "\u00A0"sv, "\u1680"sv,
        "\u200B"sv, "\u2028\u2029"sv, "\u3000 \u202F"sv}) {
    EXPECT_TRUE(stringIsEmpty(blank)) << '"' << blank << '"';
  }
}

TEST(NSStringWordsAndTags, TakesAnyOtherStringAsNotEmpty) {
  for (const std::string_view text :
       {"a"sv, " a "sv, "0"sv, "\0"sv, " \0 "sv, "\u0301"sv, " \u0301"sv, "\uFEFF"sv, "\u2060"sv,
        "\u180E"sv, "\x1F"sv, "\u05D0"sv, "\uD55C"sv, "\U0001F600"sv, "\xFF"sv, "\xC2"sv,
        "\xED\xA0\x80"sv}) {
    EXPECT_FALSE(stringIsEmpty(text)) << '"' << text << '"';
  }
}

TEST(NSStringWordsAndTags, TakesDecimalDigitsOfEveryScriptAsNumeric) {
  for (const std::string_view text :
       {""sv, "0"sv, "0123456789"sv, "\u0660\u0669"sv, "\u06F3"sv, "\u0966"sv, "\u09E7"sv,
        "\u0E53"sv, "\uFF10\uFF19"sv, "\U0001D7CE"sv, "\U0001E950"sv, "1\u0662\uFF13"sv}) {
    EXPECT_TRUE(isNumeric(text)) << '"' << text << '"';
  }
}

TEST(NSStringWordsAndTags, TakesAnythingElseAsNotNumeric) {
  for (const std::string_view text :
       {" "sv,      "1 "sv,         "-1"sv,      "+1"sv,          "1.5"sv,     "1,5"sv,
        "1e3"sv,    "0x1"sv,        "a"sv,       "1\0"sv,         "\u00B2"sv,  "\u00BD"sv,
        "\u2163"sv, "\u4E09"sv,     "1\u0301"sv, "1\u200B"sv,     "\uFEFF1"sv, "\u05D0"sv,
        "\uD55C"sv, "\U0001F600"sv, "1\xFF"sv,   "\xED\xA0\x80"sv}) {
    EXPECT_FALSE(isNumeric(text)) << '"' << text << '"';
  }
}

TEST(NSStringWordsAndTags, PutsTheFirstUnitInTitleCase) {
  constexpr std::array rows{Row{"", ""},
                            Row{"abc", "Abc"},
                            Row{"ABC", "ABC"},
                            Row{"a", "A"},
                            Row{"iPhone", "IPhone"},
                            Row{"1a", "1a"},
                            Row{" a", " a"},
                            Row{"\0a"sv, "\0a"sv},
                            Row{"\u00E9t\u00E9", "\u00C9t\u00E9"},
                            Row{"e\u0301", "E\u0301"},
                            Row{"\u0301e", "\u0301e"},
                            Row{"\u00DFa", "Ssa"},
                            Row{"\u0149a", "\u02BCNa"},
                            Row{"\uFB01x", "Fix"},
                            Row{"\u01C6x", "\u01C5x"},
                            Row{"\u01C4x", "\u01C5x"},
                            Row{"\u1F80", "\u1F88"},
                            Row{"\u01F0", "J\u030C"},
                            Row{"\u0345", "\u0399"},
                            Row{"\u0131x", "Ix"},
                            Row{"\u0130x", "\u0130x"},
                            Row{"\u03C2x", "\u03A3x"},
                            Row{"\u10D0", "\u10D0"},
                            Row{"\uD55Ca", "\uD55Ca"},
                            Row{"\u05D0a", "\u05D0a"},
                            Row{"\u200Ba", "\u200Ba"},
                            Row{"\uFEFFa", "\uFEFFa"},
                            Row{"\xE9x", "\xE9x"},
                            Row{"\xED\xA0\x80x", "\xED\xA0\x80x"}};
  for (const auto& [receiver, expected] : rows) {
    EXPECT_EQ(stringWithCapitalizedFirstLetter(receiver), expected) << receiver;
  }
}

TEST(NSStringWordsAndTags, LeavesALetterOfTwoUnitsAsItIs) {
  EXPECT_EQ(stringWithCapitalizedFirstLetter("\U00010428x"), "\U00010428x");
  EXPECT_EQ(stringWithCapitalizedFirstLetter("\U0001E922"), "\U0001E922");
}

}  // namespace
}  // namespace vornix
