#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <span>
#include <string>

#include "foundation/NSString+Arguments.h"
#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+ProtectedSubstring.h"
#include "foundation/NSString+Regex.h"

namespace vornix {
namespace {

using namespace std::string_view_literals;

struct ListRow {
  std::string_view list;
  std::string_view entry;
  std::string_view expected;
};

void expectLists(std::span<const ListRow> rows) {
  for (const ListRow& row : rows) {
    EXPECT_EQ(stringByRemovingSemicolonSeparatedString(row.list, row.entry), row.expected)
        << '"' << row.entry << "\" from \"" << row.list << '"';
  }
}

TEST(NSStringArguments, RemovesAnEntryWithBlanksAroundItFromAListWithColons) {
  constexpr std::array rows{ListRow{"a: b :c", "b", "a:c"}};
  expectLists(rows);
}

TEST(NSStringArguments, RemovesEveryOccurrenceAndTrimsTheOtherEntries) {
  constexpr std::array rows{
      ListRow{"a:b:a:c:a", "a", "b:c"}, ListRow{" a : b ", "x", "a:b"},
      ListRow{"a\n:\tb", "x", "a:b"}, ListRow{"a", "a", ""}, ListRow{"a", "b", "a"},
      ListRow{"a:a", "a", ""}, ListRow{"a;b:c", "b", "a;b:c"},
      // The entry to remove is taken as it is.
      ListRow{"a:b", " b ", "a:b"}, ListRow{"a:B", "b", "a:B"}, ListRow{"a:b c", "b", "a:b c"},
      ListRow{"a\0:b"sv, "a\0"sv, "b"sv}, ListRow{"\u00E9:e\u0301", "\u00E9", "e\u0301"},
      ListRow{"\uD55C:x", "\uD55C", "x"}, ListRow{"\u05D0:\u05D1", "\u05D1", "\u05D0"},
      ListRow{"\u200Ba\u00A0:b", "a", "b"}, ListRow{"\uFEFFa:b", "a", "\uFEFFa:b"},
      ListRow{"\U0001F600:x", "\U0001F600", "x"}, ListRow{"\u03C3:\u03C2", "\u03C3", "\u03C2"},
      ListRow{"\xFF : \xC3", "\xC3", "\xFF"}, ListRow{"\xED\xA0\x80:x", "x", "\xED\xA0\x80"}};
  expectLists(rows);
}

TEST(NSStringArguments, KeepsEmptyEntries) {
  constexpr std::array rows{ListRow{"", "a", ""},       ListRow{":", "a", ":"},
                            ListRow{"a::b", "a", ":b"}, ListRow{"::", "a", "::"},
                            ListRow{" : ", "a", ":"},   ListRow{"a:", "a", ""},
                            ListRow{":a", "a", ""}};
  expectLists(rows);
}

TEST(NSStringArguments, RemovesEmptyEntriesForTheEmptyEntry) {
  constexpr std::array rows{ListRow{"", "", ""}, ListRow{"a::b: ", "", "a:b"},
                            ListRow{":::", "", ""}};
  expectLists(rows);
}

TEST(NSStringArguments, TakesAHugeListInOnePass) {
  std::string list;
  for (int entry = 0; entry < 100'000; ++entry) list += " a : b :";
  std::string expected;
  for (int entry = 0; entry < 100'000; ++entry) expected += "b:";
  EXPECT_EQ(stringByRemovingSemicolonSeparatedString(list, "a"), expected);
}

struct RangeRow {
  std::string_view receiver;
  NSRange range;
  std::string_view expected;
};

void expectRanges(std::span<const RangeRow> rows) {
  for (const RangeRow& row : rows) {
    EXPECT_EQ(substringWithRangeProtected(row.receiver, row.range), row.expected)
        << row.receiver << " at " << row.range.location << ", " << row.range.length;
  }
}

TEST(NSStringProtectedSubstring, AnswersARangeThatEndsExactlyAtTheEnd) {
  constexpr std::array rows{RangeRow{"abc", {1, 2}, "bc"}, RangeRow{"abc", {0, 3}, "abc"},
                            RangeRow{"abc", {3, 0}, ""}, RangeRow{"a\u00E9", {1, 1}, "\u00E9"},
                            RangeRow{"a\U0001F600", {1, 2}, "\U0001F600"}};
  expectRanges(rows);
}

TEST(NSStringProtectedSubstring, AnswersNothingOneUnitFurther) {
  constexpr std::array rows{RangeRow{"abc", {1, 3}, ""},     RangeRow{"abc", {0, 4}, ""},
                            RangeRow{"abc", {3, 1}, ""},     RangeRow{"abc", {4, 0}, ""},
                            RangeRow{"a\u00E9", {1, 2}, ""}, RangeRow{"a\U0001F600", {1, 3}, ""},
                            RangeRow{"", {0, 1}, ""}};
  expectRanges(rows);
}

TEST(NSStringProtectedSubstring, AnswersNothingForARangeThatOverflows) {
  constexpr auto most = std::numeric_limits<std::uint64_t>::max();
  constexpr std::array rows{RangeRow{"abc", {1, most}, ""}, RangeRow{"abc", {most, 2}, ""},
                            RangeRow{"abc", {NSNotFound, NSNotFound}, ""},
                            RangeRow{"\u00E9", {most, most}, ""}};
  expectRanges(rows);
}

TEST(NSStringProtectedSubstring, CountsUnits) {
  constexpr std::array rows{RangeRow{"", {0, 0}, ""},
                            RangeRow{"a\0b"sv, {1, 2}, "\0b"sv},
                            RangeRow{"e\u0301x", {0, 1}, "e"},
                            RangeRow{"\u00DF\u0130\u03C2", {1, 1}, "\u0130"},
                            RangeRow{"\uD55C\uAE00", {1, 1}, "\uAE00"},
                            RangeRow{"\u1112\u1161\u11AB", {1, 1}, "\u1161"},
                            RangeRow{"\u05D0\u05D1", {1, 1}, "\u05D1"},
                            RangeRow{"\uFEFFa\u200B", {1, 1}, "a"},
                            RangeRow{"a\U0001F600", {1, 1}, "\xED\xA0\xBD"},
                            RangeRow{"a\U0001F600", {2, 1}, "\xED\xB8\x80"},
                            RangeRow{"\xFF\u00E9", {0, 1}, "\xFF"},
                            RangeRow{"\xED\xA0\x80z", {0, 1}, "\xED\xA0\x80"}};
  expectRanges(rows);
}

bool isMatched(std::string_view text, std::string_view pattern) {
  const auto expression =
      NSRegularExpression::regularExpressionWithPattern(pattern, NSRegularExpressionOptions::none);
  return expression != nullptr && isMatchedByRegex(text, *expression);
}

TEST(NSStringRegex, FindsAMatchAnywhereInTheReceiver) {
  struct Row {
    std::string_view text;
    std::string_view pattern;
  };
  constexpr std::array rows{Row{"xaby", "ab"},
                            Row{"ab", "ab"},
                            Row{"ab", "^ab$"},
                            Row{"ab\n", "ab$"},
                            Row{"", "a*"},
                            Row{"xyz", "a*"},
                            Row{"", "^$"},
                            Row{"a\0b"sv, "\\x00b"},
                            Row{"\u00E9", "\\w"},
                            Row{"\u0663", "^\\d$"},
                            Row{"\u00A0", "\\s"},
                            Row{"\uD55C", "^.$"},
                            Row{"\u05D0", "\\p{Hebrew}"},
                            Row{"\U0001F600", "^.$"},
                            Row{"\u200B", "^.$"},
                            Row{"\uFEFFa", "a"},
                            Row{"\xED\xA0\x80", "^.$"},
                            Row{"\xFFz", "z"},
                            Row{"z\xFF", "z"},
                            Row{"\xFF", "a*"},
                            Row{"/tmp/a.log", "\\.log$"}};
  for (const Row& row : rows) {
    EXPECT_TRUE(isMatched(row.text, row.pattern)) << row.pattern << " in " << row.text;
  }
}

TEST(NSStringRegex, FindsNoMatchWhereThereIsNone) {
  struct Row {
    std::string_view text;
    std::string_view pattern;
  };
  constexpr std::array rows{
      Row{"", "a"},          Row{"xab", "^ab"},        Row{"abx", "ab$"},
      Row{"AB", "ab"},       Row{"\u00E9", "e\u0301"}, Row{"e\u0301", "\u00E9"},
      Row{"\n", "^.$"},      Row{"\u2028", "."},       Row{"\xFF", "."},
      Row{"\xFF", "\u00FF"}, Row{"a\xFFz", "a.z"},     Row{"a\xFF", "^a$"},
      Row{"\xFFz", "^z"},    Row{"\u00DF", "ss"}};
  for (const Row& row : rows) {
    EXPECT_FALSE(isMatched(row.text, row.pattern)) << row.pattern << " in " << row.text;
  }
}

TEST(NSStringEncodedAsURL, EscapesAmpersandsBesidesWhatMayNotStandInAUrl) {
  struct Row {
    std::string_view receiver;
    std::string_view expected;
  };
  constexpr std::array rows{
      Row{"", ""}, Row{"Tom & Jerry", "Tom%20%26%20Jerry"}, Row{"&&", "%26%26"},
      Row{"a=b+c/d?e", "a=b+c/d?e"}, Row{"!$'()*,-.:;@_~", "!$'()*,-.:;@_~"},
      Row{"\"#%<>[\\]^{|}`", "%22%23%25%3C%3E%5B%5C%5D%5E%7B%7C%7D%60"},
      // An escape that is there already is escaped once more.
      Row{"%26", "%2526"}, Row{"\0\x1F\x7F"sv, "%00%1F%7F"}, Row{"\u00E9", "%C3%A9"},
      Row{"e\u0301", "e%CC%81"}, Row{"&\u0301", "%26%CC%81"}, Row{"\u03A3\u03C2", "%CE%A3%CF%82"},
      Row{"\u0130", "%C4%B0"}, Row{"\u00DF", "%C3%9F"}, Row{"\uD55C", "%ED%95%9C"},
      Row{"\u05D0", "%D7%90"}, Row{"\u200B", "%E2%80%8B"}, Row{"\uFEFF", "%EF%BB%BF"},
      Row{"\uFFFF", "%EF%BF%BF"}, Row{"\U0001F600", "%F0%9F%98%80"}};
  for (const Row& row : rows) {
    EXPECT_EQ(vnx_stringEncodedAsURL(row.receiver), row.expected) << row.receiver;
  }
}

TEST(NSStringEncodedAsURL, AnswersNothingForWhatIsNotWellFormed) {
  for (const std::string_view text : {"a&\xED\xB0\x80"sv, "\xED\xA0\x80"sv, "\xFF"sv, "a\xC3"sv}) {
    EXPECT_EQ(vnx_stringEncodedAsURL(text), std::nullopt);
  }
}

}  // namespace
}  // namespace vornix
