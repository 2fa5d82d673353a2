#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>

#include "foundation/NSString+NSStringAdditions.h"
#include "tests/support/RandomText.h"
#include "tests/support/Repeated.h"

namespace vornix {
namespace {

using tests::repeated;
using namespace std::string_view_literals;

struct Row {
  std::string_view receiver;
  std::string_view path;
  bool expected;
};

void expectRows(std::span<const Row> rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(isSubpathOf(row.receiver, row.path), row.expected)
        << '"' << row.receiver << "\" below \"" << row.path << '"';
  }
}

TEST(NSStringSubpath, IsNoSubpathOfALongerPath) {
  constexpr std::array rows{Row{"/a/b", "/a/b/c", false}, Row{"", "/", false}, Row{"", "a", false},
                            Row{"/a", "/a/", false}};
  expectRows(rows);
}

TEST(NSStringSubpath, IsNoSubpathOfAPathWhoseLastNameOnlyBeginsTheSame) {
  constexpr std::array rows{Row{"/a/bc", "/a/b", false}, Row{"/a/b c", "/a/b", false},
                            Row{"/a/b.c/d", "/a/b", false}};
  expectRows(rows);
}

TEST(NSStringSubpath, IsASubpathOfAPathThatItHoldsFurtherAlong) {
  constexpr std::array rows{Row{"/x/a/b", "/a", true}, Row{"/x/a", "/a", true},
                            Row{"x/a/b/c", "a/b", true}, Row{"xa/b", "a", true}};
  expectRows(rows);
}

TEST(NSStringSubpath, EveryPathWithASlashIsASubpathOfTheRoot) {
  constexpr std::array rows{
      Row{"/", "/", true},       Row{"/a", "/", true},      Row{"a/b", "/", true},
      Row{"a/", "/", true},      Row{"a", "/", false},      Row{"//", "/", true},
      Row{"\u00E9/", "/", true}, Row{"\u00E9", "/", false}, Row{"a/\u0301", "/", false}};
  expectRows(rows);
}

TEST(NSStringSubpath, IsASubpathOfItself) {
  constexpr std::array rows{Row{"/a/b", "/a/b", true}, Row{"a", "a", true}, Row{"/a/", "/a/", true},
                            Row{"/\u00E9", "/\u00E9", true},
                            Row{"/\U0001F600", "/\U0001F600", true}};
  expectRows(rows);
}

TEST(NSStringSubpath, ComparesWholeNames) {
  constexpr std::array rows{Row{"/a/b/c", "/a/b", true},
                            Row{"/a/b/", "/a/b", true},
                            Row{"/a/b", "", false},
                            Row{"", "", false},
                            Row{"/A/b", "/a", false},
                            Row{"/a//b", "/a/", true},
                            Row{"/a/b", "/a/", false},
                            Row{"/a/b/c", "b/c", true},
                            Row{"/a/b/c", "b", true},
                            Row{"/ab/c", "b", true},
                            Row{"/a\0/b"sv, "/a\0"sv, true},
                            Row{"/a\0b"sv, "/a"sv, false},
                            Row{"/a b/c", "/a b", true},
                            Row{"/a/b/c/d/e/f/g", "/c/d", true},
                            Row{"/a/b/c/d/e/f/g", "/c/e", false},
                            Row{"/aaab/aab/ab/b", "/ab", true}};
  expectRows(rows);
}

TEST(NSStringSubpath, ComparesNamesByCanonicalEquivalence) {
  constexpr std::array rows{Row{"/caf\u00E9/x", "/caf\u00E9", true},
                            Row{"/cafe\u0301/x", "/caf\u00E9", true},
                            Row{"/cafe\u0301", "/caf\u00E9", true},
                            Row{"/caf\u00E9/xyz", "/cafe\u0301", true},
                            Row{"/cafe\u0301", "/cafe", false},
                            Row{"/a/b\u0301", "/a/b", false},
                            Row{"/a/b/\u0301", "/a/b", false},
                            Row{"/\uD55C/x/y", "/\u1112\u1161\u11AB", true},
                            Row{"/\u1112\u1161\u11AB", "/\uD55C", true},
                            Row{"/\uD558\u11AB", "/\uD558", false},
                            Row{"/\u212Aelvin/x", "/Kelvin", true},
                            Row{"/Kelvin/x", "/\u212Aelvin", true},
                            Row{"/stra\u00DFe/x", "/strasse", false},
                            Row{"/\u0130/x", "/i", false},
                            Row{"/\u03C2/x", "/\u03C3", false},
                            Row{"/\u05D0\u05D1/x", "/\u05D0\u05D1", true},
                            Row{"/a\u200B/b", "/a", false},
                            Row{"/a\uFEFF/b", "/a\uFEFF", true},
                            Row{"/\U0001F600/x", "/\U0001F600", true},
                            Row{"/\U0001F600\u200D/x", "/\U0001F600", false}};
  expectRows(rows);
}

TEST(NSStringSubpath, ComparesLengthsInUnitsFirst) {
  // The same name, but the receiver counts fewer units than the path.
  EXPECT_FALSE(isSubpathOf("/\u00E9", "/e\u0301"));
  EXPECT_FALSE(isSubpathOf("/\uD55C", "/\u1112\u1161\u11AB"));
  // Fewer bytes, but as many units.
  EXPECT_TRUE(isSubpathOf("/K", "/\u212A"));
}

TEST(NSStringSubpath, FindsNoNameWithAnIllFormedByte) {
  constexpr std::array rows{Row{"/caf\xE9/x", "/caf\xE9", false},
                            Row{"/caf\xE9", "/caf\xE9", false}, Row{"/caf\xE9/x", "/caf", false},
                            Row{"/a/caf\xE9/x", "/a", true},
                            Row{"/\xED\xA0\x80/x", "/\xED\xA0\x80", true}};
  expectRows(rows);
}

TEST(NSStringSubpath, AnswersForVeryLongAsciiPaths) {
  const std::string path = repeated("/name", 100'000);
  EXPECT_TRUE(isSubpathOf(path + "/x", path));
  EXPECT_FALSE(isSubpathOf(path + "x", path));
  EXPECT_FALSE(isSubpathOf(repeated("/a", 500'000), repeated("/a", 250'000) + "/b"));
}

// A letter in front that no path holds changes nothing but the way that is taken.
TEST(NSStringSubpath, AnswersForAsciiAsTheGeneralWayDoes) {
  constexpr std::array pieces{"/"sv, "a"sv, "b"sv, "ab"sv, "//"sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 5000; ++round) {
    const std::string receiver = "x" + random.next(10);
    const std::string path = random.next(4);
    ASSERT_EQ(isSubpathOf(receiver, path), isSubpathOf("\u00E9" + receiver, path))
        << '"' << receiver << "\" below \"" << path << '"';
  }
}

}  // namespace
}  // namespace vornix
