#include "platform/text/NSRegularExpression.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace vornix {

void PrintTo(const NSRange& range, std::ostream* out) {
  *out << range.location << "+" << range.length;
}

namespace {

using namespace std::string_view_literals;

constexpr NSRange kNone{NSNotFound, 0};

struct Row {
  std::string_view pattern;
  std::string_view text;
  NSRange expected;
};

std::shared_ptr<const NSRegularExpression> expressionOf(
    std::string_view pattern,
    NSRegularExpressionOptions options = NSRegularExpressionOptions::none) {
  return NSRegularExpression::regularExpressionWithPattern(pattern, options);
}

NSRange firstMatch(const NSRegularExpression& expression, std::string_view text) {
  const NSRange whole{0, text::utf16Length(text)};
  return expression.rangeOfFirstMatchInString(text, NSMatchingOptions::none, whole);
}

void expectRows(std::span<const Row> rows,
                NSRegularExpressionOptions options = NSRegularExpressionOptions::none) {
  for (const Row& row : rows) {
    const auto expression = expressionOf(row.pattern, options);
    ASSERT_NE(expression, nullptr) << row.pattern;
    EXPECT_EQ(firstMatch(*expression, row.text), row.expected) << row.pattern << " in " << row.text;
  }
}

TEST(NSRegularExpression, AnswersTheFirstMatchInUnits) {
  constexpr std::array rows{Row{"b+", "abbbc", {1, 3}},
                            Row{"x", "abc", kNone},
                            Row{"x", "", kNone},
                            Row{"b", "\u00E9\u00E9b", {2, 1}},
                            Row{"b", "\U0001F600b", {2, 1}},
                            Row{"\U0001F600", "a\U0001F600b", {1, 2}},
                            Row{"\uD55C", "a\uD55C", {1, 1}},
                            Row{"\u05D1", "\u05D0\u05D1", {1, 1}},
                            Row{"\\x00", "a\0b"sv, {1, 1}},
                            Row{"b", "\xFF\xC3\xED\xA0\x80z b", {5, 1}}};
  expectRows(rows);
}

TEST(NSRegularExpression, MatchesOneCodePointByADotButNoLineEnd) {
  constexpr std::array rows{Row{"^.$", "\U0001F600", {0, 2}},
                            Row{"^.$", "e\u0301", kNone},
                            Row{"^.$", "\xED\xA0\x80", {0, 1}},
                            Row{".", "\n", kNone},
                            Row{".", "\v\f\r", kNone},
                            Row{".", "\u0085\u2028\u2029", kNone},
                            Row{".", "\t", {0, 1}},
                            Row{".", "\0"sv, {0, 1}}};
  expectRows(rows);
}

TEST(NSRegularExpression, AnchorsAtTheEndsOfTheTextOnly) {
  constexpr std::array rows{Row{"^b", "a\nb", kNone},   Row{"a$", "a\nb", kNone},
                            Row{"b$", "a\nb", {2, 1}},  Row{"b$", "b\n", {0, 1}},
                            Row{"b$", "b\r\n", {0, 1}}, Row{"b$", "b\u2028", {0, 1}},
                            Row{"b$", "b\n\n", kNone},  Row{"(?m)^b", "a\nb", {2, 1}}};
  expectRows(rows);
}

TEST(NSRegularExpression, KnowsUnicodesClasses) {
  constexpr std::array rows{Row{"\\d+", "a\u0663\u0664", {1, 2}},
                            Row{"\\d", "\u00B2", kNone},
                            Row{"\\w+", "-\u00E9\uD55C\u05D0-", {1, 3}},
                            Row{"\\s", "a\u3000", {1, 1}},
                            Row{"\\s", "\u200B", kNone},
                            Row{"\\bb", "\u00E9b b", {3, 1}},
                            Row{"[0-9]", "\u0663", kNone}};
  expectRows(rows);
}

TEST(NSRegularExpression, CountsAnEmptyMatchAsFound) {
  constexpr std::array rows{Row{"a*", "", {0, 0}}, Row{"a*", "b", {0, 0}}, Row{"$", "ab", {2, 0}},
                            Row{"(?=b)", "ab", {1, 0}}, Row{"a*", "\xFF", {0, 0}}};
  expectRows(rows);
}

TEST(NSRegularExpression, KnowsNoCanonicalEquivalence) {
  constexpr std::array rows{Row{"\u00E9", "e\u0301", kNone}, Row{"e\u0301", "\u00E9", kNone},
                            Row{"e", "e\u0301", {0, 1}}, Row{"\u212B", "\u00C5", kNone}};
  expectRows(rows);
}

TEST(NSRegularExpression, DistinguishesCaseUnlessAsked) {
  constexpr std::array rows{Row{"a", "A", kNone}, Row{"\u00E9", "\u00C9", kNone}};
  expectRows(rows);
}

TEST(NSRegularExpression, FoldsCaseInFullWhenAsked) {
  constexpr std::array rows{Row{"a", "A", {0, 1}},
                            Row{"ABC", "xabc", {1, 3}},
                            Row{"\u00DF", "SS", {0, 2}},
                            Row{"ss", "\u00DF", {0, 1}},
                            Row{"k", "\u212A", {0, 1}},
                            Row{"s", "\u017F", {0, 1}},
                            Row{"\u03C2", "\u03A3", {0, 1}},
                            Row{"\u00E9", "\u00C9", {0, 1}},
                            Row{"i", "\u0130", kNone},
                            Row{"i", "\u0131", kNone},
                            Row{"\U00010400", "\U00010428", {0, 2}},
                            Row{"[0-9]", "\u0663", kNone}};
  expectRows(rows, NSRegularExpressionOptions::caseInsensitive);
}

TEST(NSRegularExpression, TakesLiteralsAndPossessiveQuantifiers) {
  constexpr std::array rows{Row{"]", "a]", {1, 1}}, Row{"a++b", "aab", {0, 3}},
                            Row{"a#b", "a#b", {0, 3}}, Row{"a b", "a b", {0, 3}}};
  expectRows(rows);
}

TEST(NSRegularExpression, DoesNotCompileWhatIsNone) {
  for (const std::string_view pattern : {""sv,
                                         "("sv,
                                         ")"sv,
                                         "a)"sv,
                                         "["sv,
                                         "[a"sv,
                                         "{"sv,
                                         "}"sv,
                                         "a{"sv,
                                         "a{2"sv,
                                         "*"sv,
                                         "+a"sv,
                                         "?"sv,
                                         "(*)"sv,
                                         "a\\"sv,
                                         "[z-a]"sv,
                                         "\\p{Nonsense}"sv,
                                         "(?<=a*)b"sv,
                                         "\\1"sv,
                                         "a{,3}"sv,
                                         "(?"sv,
                                         "a\xFF"sv}) {
    std::optional<NSError> error;
    EXPECT_EQ(NSRegularExpression::regularExpressionWithPattern(
                  pattern, NSRegularExpressionOptions::none, &error),
              nullptr)
        << pattern;
    ASSERT_TRUE(error) << pattern;
    EXPECT_EQ(error->domain, NSCocoaErrorDomain);
    EXPECT_EQ(error->code, 2048);
    EXPECT_NE(error->localizedDescription.find(pattern), std::string::npos);
  }
}

TEST(NSRegularExpression, LeavesTheErrorAloneWhenThePatternCompiles) {
  std::optional<NSError> error;
  EXPECT_NE(NSRegularExpression::regularExpressionWithPattern("a", NSRegularExpressionOptions::none,
                                                              &error),
            nullptr);
  EXPECT_FALSE(error);
}

TEST(NSRegularExpression, MatchesNoIllFormedByte) {
  constexpr std::array rows{Row{".", "\xFF", kNone},
                            Row{"[^a]", "\xFF", kNone},
                            Row{"\u00FF", "\xFF", kNone},
                            Row{"\uFFFD", "\xFF", kNone},
                            Row{"a.c",
                                "a\xFF"
                                "c",
                                kNone},
                            Row{".+",
                                "ab\xFF"
                                "cde",
                                {0, 2}},
                            Row{"c.*",
                                "ab\xFF"
                                "cde",
                                {3, 3}},
                            Row{"\uFFFD", "\xFF\uFFFD", {1, 1}}};
  expectRows(rows);
}

TEST(NSRegularExpression, TakesAnIllFormedByteForNoEndOfTheText) {
  constexpr std::array rows{Row{"^a",
                                "\xFF"
                                "a",
                                kNone},
                            Row{"a$", "a\xFFz", kNone}, Row{"^a$", "a\xFF", kNone},
                            Row{"^\xC3\xA9", "\u00E9\xFF", {0, 1}}};
  expectRows(rows);
}

TEST(NSRegularExpression, SearchesARangeAsIfItWereTheWholeText) {
  struct Case {
    std::string_view pattern;
    std::string_view text;
    NSRange range;
    NSRange expected;
  };
  constexpr std::array cases{Case{"b", "abab", {2, 2}, {3, 1}},
                             Case{"a", "abab", {1, 1}, kNone},
                             Case{"^b$", "abc", {1, 1}, {1, 1}},
                             Case{"(?<=a)b", "ab", {1, 1}, kNone},
                             Case{"a*", "bab", {2, 0}, {2, 0}},
                             Case{"b", "\U0001F600b\u00E9", {2, 2}, {2, 1}},
                             Case{".", "\U0001F600", {1, 1}, {1, 1}},
                             Case{"b",
                                  "\xFF"
                                  "b\xFF"
                                  "b",
                                  {2, 2},
                                  {3, 1}},
                             Case{"a", "a", {0, 2}, kNone},
                             Case{"a", "a", {2, 0}, kNone},
                             Case{"a", "a", {1, NSNotFound}, kNone},
                             Case{"a", "a", {NSNotFound, 1}, kNone}};
  for (const Case& c : cases) {
    const auto expression = expressionOf(c.pattern);
    ASSERT_NE(expression, nullptr);
    EXPECT_EQ(expression->rangeOfFirstMatchInString(c.text, NSMatchingOptions::none, c.range),
              c.expected)
        << c.pattern << " in " << c.text;
  }
}

TEST(NSRegularExpression, FindsNothingWhereASearchOutgrowsItsMemory) {
  const auto expression = expressionOf("(a|b)*c");
  ASSERT_NE(expression, nullptr);
  EXPECT_EQ(firstMatch(*expression, std::string(1'000'000, 'a')), kNone);
  EXPECT_EQ(firstMatch(*expression, "abc"), (NSRange{0, 3}));
}

TEST(NSRegularExpression, SearchesTextsOfManyIllFormedBytesInOnePass) {
  const auto expression = expressionOf("x$");
  ASSERT_NE(expression, nullptr);
  EXPECT_EQ(firstMatch(*expression, std::string(300'000, '\xFF') + "x"), (NSRange{300'000, 1}));
}

TEST(NSRegularExpression, ServesManyThreadsAtOnce) {
  const auto expression = expressionOf("a+b");
  ASSERT_NE(expression, nullptr);
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (std::size_t number = 0; number < 8; ++number) {
    threads.emplace_back([&expression, &wrong, number] {
      const std::string text = std::string(number, 'x') + "aab";
      for (int round = 0; round < 500; ++round) {
        if (firstMatch(*expression, text) != NSRange{number, 3}) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace vornix
