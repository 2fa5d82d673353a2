#include "platform/base/Utf16.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "platform/base/Utf8.h"
#include "tests/support/RandomText.h"

namespace vornix::text {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::array kPieces{"a"sv,          "\0"sv,         "\u00E9"sv,       "e\u0301"sv,
                             "\uD55C"sv,     "\u05D0"sv,     "\u200B"sv,       "\uFEFF"sv,
                             "\U0001F600"sv, "\U00010400"sv, "\xED\xA0\xBD"sv, "\xED\xB8\x80"sv,
                             "\xFF"sv,       "\xC3"sv,       "\xF0\x9F"sv,     "plain text "sv};

TEST(Utf16, CountsUnits) {
  struct Row {
    std::string_view text;
    std::size_t units;
  };
  constexpr std::array rows{Row{"", 0},
                            Row{"a", 1},
                            Row{"12345678", 8},
                            Row{"123456789", 9},
                            Row{"a\0b"sv, 3},
                            Row{"\u00E9", 1},
                            Row{"e\u0301", 2},
                            Row{"12345678\u00E9", 9},
                            Row{"\u00DF", 1},
                            Row{"\u0130", 1},
                            Row{"\u03A3\u03C2", 2},
                            Row{"\uD55C\uAE00", 2},
                            Row{"\u1112\u1161\u11AB", 3},
                            Row{"\u05D0\u05D1", 2},
                            Row{"\u200B\uFEFF", 2},
                            Row{"\uFFFF", 1},
                            Row{"\U00010000", 2},
                            Row{"\U0001F600!", 3},
                            Row{"\U0010FFFF", 2},
                            Row{"\xED\xA0\x80", 1},
                            Row{"\xED\xA0\xBD\xED\xB8\x80", 2},
                            Row{"\xFF", 1},
                            Row{"\xC0\x80", 2},
                            Row{"\xF0\x9F\x98", 3},
                            Row{"\xF4\x90\x80\x80", 4},
                            Row{"caf\xE9", 4}};
  for (const Row& row : rows) {
    EXPECT_EQ(utf16Length(row.text), row.units) << row.text;
  }
}

TEST(Utf16, CountsTheUnitsThatAConversionWouldGive) {
  tests::RandomText random(kPieces);
  for (int round = 0; round < 2000; ++round) {
    const std::string text = random.next(12);
    ASSERT_EQ(utf16Length(text), utf16Units(text).size()) << text;
  }
}

TEST(Utf16, TakesSubstringsByUnits) {
  struct Row {
    std::string_view text;
    NSRange range;
    std::optional<std::string_view> expected;
  };
  constexpr auto most = std::numeric_limits<std::uint64_t>::max();
  constexpr std::array rows{Row{"", {0, 0}, ""},
                            Row{"", {0, 1}, std::nullopt},
                            Row{"abc", {0, 3}, "abc"},
                            Row{"abc", {1, 1}, "b"},
                            Row{"abc", {3, 0}, ""},
                            Row{"abc", {3, 1}, std::nullopt},
                            Row{"abc", {4, 0}, std::nullopt},
                            Row{"abc", {1, most}, std::nullopt},
                            Row{"abc", {most, 1}, std::nullopt},
                            Row{"abc", {most, most}, std::nullopt},
                            Row{"abc", {NSNotFound, 0}, std::nullopt},
                            Row{"a\0b"sv, {1, 2}, "\0b"sv},
                            Row{"\u00E9\u00DF", {1, 1}, "\u00DF"},
                            Row{"\u00E9\u00DF", {2, 1}, std::nullopt},
                            Row{"\u00E9\u00DF", {3, 0}, std::nullopt},
                            Row{"e\u0301x", {1, 1}, "\u0301"},
                            Row{"\uD55C\uAE00", {1, 1}, "\uAE00"},
                            Row{"\u05D0\u05D1", {0, 1}, "\u05D0"},
                            Row{"a\U0001F600b", {1, 2}, "\U0001F600"},
                            Row{"a\U0001F600b", {1, 1}, "\xED\xA0\xBD"},
                            Row{"a\U0001F600b", {2, 1}, "\xED\xB8\x80"},
                            Row{"a\U0001F600b",
                                {2, 2},
                                "\xED\xB8\x80"
                                "b"},
                            Row{"a\U0001F600b", {3, 1}, "b"},
                            Row{"a\U0001F600b", {3, 2}, std::nullopt},
                            Row{"\xED\xA0\x80x", {1, 1}, "x"},
                            Row{"\xFF\u00E9\xC3", {0, 2}, "\xFF\u00E9"},
                            Row{"\xFF\u00E9\xC3", {2, 1}, "\xC3"}};
  for (const Row& row : rows) {
    EXPECT_EQ(substringOfUnits(row.text, row.range), row.expected)
        << row.text << " at " << row.range.location;
  }
}

TEST(Utf16, TakesTheUnitsThatAConversionWouldGive) {
  tests::RandomText random(kPieces);
  for (int round = 0; round < 2000; ++round) {
    const std::string text = random.next(6);
    const std::u16string units = utf16Units(text);
    const NSRange range{random.below(8), random.below(8)};
    const auto taken = substringOfUnits(text, range);
    const bool fits = range.location + range.length <= units.size();
    ASSERT_EQ(taken.has_value(), fits) << text;
    if (fits) {
      ASSERT_EQ(utf16Units(*taken), units.substr(range.location, range.length)) << text;
    }
  }
}

TEST(Utf16, WritesUnitsAsText) {
  EXPECT_EQ(textOfUnits(u""), "");
  EXPECT_EQ(textOfUnits(u"a\u00E9\uD55C\U0001F600"), "a\u00E9\uD55C\U0001F600");
  EXPECT_EQ(textOfUnits(std::u16string{0xD83D}), "\xED\xA0\xBD");
  EXPECT_EQ(textOfUnits(std::u16string{0xDE00, 0xD83D, u'x'}), "\xED\xB8\x80\xED\xA0\xBDx");
}

TEST(Utf8, TellsAsciiAndIllFormedBytes) {
  EXPECT_TRUE(isAscii(""));
  EXPECT_TRUE(isAscii("12345678\x7F"));
  EXPECT_FALSE(isAscii("1234567\x80"));
  EXPECT_FALSE(isAscii("12345678\u00E9"));
  EXPECT_FALSE(hasIllFormedByte(""));
  EXPECT_FALSE(hasIllFormedByte("plain text, and \u00E9\U0001F600\xED\xA0\x80"));
  EXPECT_TRUE(hasIllFormedByte("plain text, and \xFF"));
  EXPECT_TRUE(hasIllFormedByte("\u00E9\xC3"));
}

}  // namespace
}  // namespace vornix::text
