#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>

#include "foundation/NSString+Arguments.h"
#include "foundation/NSString+Hashing.h"
#include "foundation/NSString+NSStringAdditions.h"
#include "foundation/NSString+ProtectedSubstring.h"
#include "foundation/NSString+Regex.h"
#include "foundation/NSString+URLAdditions.h"
#include "tests/support/Repeated.h"

// What takes time in proportion to its input takes a hundred megabytes of it, and tells so on ten
// where it looks at whole characters.
namespace vornix {
namespace {

using tests::repeated;

constexpr std::size_t kHuge = 100'000'000;
constexpr std::size_t kLarge = 10'000'000;

// Not by EXPECT_EQ, which would print both.
bool areEqual(std::string_view left, std::string_view right) {
  return left == right;
}

TEST(HugeInput, IsTrimmed) {
  const std::string kept(kHuge, 'x');
  EXPECT_TRUE(areEqual(trimWhiteSpace(std::string(kLarge, ' ') + kept + "\t\r\n"), kept));
  EXPECT_TRUE(stringIsEmpty(std::string(kLarge, ' ')));
  EXPECT_FALSE(stringIsEmpty(kept));
}

TEST(HugeInput, IsStrippedOfTags) {
  EXPECT_TRUE(areEqual(stripHTML("a<" + std::string(kHuge, 'b') + ">c"), "a c"));
  EXPECT_TRUE(areEqual(stripHTML(std::string(kHuge, '<')), ""));
}

TEST(HugeInput, LosesItsSpaces) {
  EXPECT_EQ(
      stringByRemovingSpaces(std::string(kHuge / 2, ' ') + std::string(kHuge / 2, 'x')).size(),
      kHuge / 2);
}

TEST(HugeInput, IsKnownAsNumeric) {
  const std::string digits(kHuge, '7');
  EXPECT_TRUE(isNumeric(digits));
}

TEST(HugeInput, IsCutAfterSomeWords) {
  const std::string text(kHuge, 'x');
  EXPECT_TRUE(areEqual(ellipsizeAfterNWords(text + " y", 1), text));
  EXPECT_EQ(ellipsizeAfterNWords(repeated("x ", kLarge / 10), 1'000'000).size(), 1'999'999U);
}

TEST(HugeInput, IsCutByUnits) {
  const std::string text(kHuge, 'x');
  EXPECT_TRUE(areEqual(substringWithRangeProtected(text, {1, kHuge - 1}), text.substr(1)));
  EXPECT_TRUE(areEqual(substringWithRangeProtected(text, {1, kHuge}), ""));
}

TEST(HugeInput, GetsAndLosesPercentEscapes) {
  const std::string plain(kHuge, 'x');
  const auto escaped = vnx_stringEncodedAsURL(plain);
  ASSERT_TRUE(escaped);
  EXPECT_TRUE(areEqual(*escaped, plain));
  const auto decoded = stringByDecodingURLEscapes(plain.substr(0, kLarge));
  ASSERT_TRUE(decoded);
  EXPECT_TRUE(areEqual(*decoded, plain.substr(0, kLarge)));
}

TEST(HugeInput, ConsistsOfPercentEscapes) {
  const std::string spaces(kLarge / 3, ' ');
  const auto escaped = stringByEncodingURLEscapes(spaces);
  ASSERT_TRUE(escaped);
  EXPECT_EQ(escaped->size(), spaces.size() * 3);
  const auto decoded = stringByDecodingURLEscapes(*escaped);
  ASSERT_TRUE(decoded);
  EXPECT_TRUE(areEqual(*decoded, spaces));
}

TEST(HugeInput, GoesThroughBase64) {
  const Data data(kHuge / 4 * 3, std::byte{0x5A});
  const std::string encoded = base64enc(data);
  EXPECT_EQ(encoded.size(), kHuge);
  EXPECT_TRUE(base64dec(encoded) == data);
}

TEST(HugeInput, HasAHash) {
  EXPECT_EQ(md5Hash(std::string(kHuge, 'a')), "458a3045ba5c1f9a4cde4176be274f2b");
}

TEST(HugeInput, IsAPathBelowAnother) {
  const std::string folder = "/" + std::string(kHuge, 'a');
  EXPECT_TRUE(isSubpathOf(folder + "/b", folder));
  EXPECT_FALSE(isSubpathOf(folder + "b", folder));
  EXPECT_FALSE(isSubpathOf("/a", folder));
}

TEST(HugeInput, IsAPathBeyondAsciiBelowAnother) {
  const std::string folder = "/" + repeated("\u00E9", kLarge / 50);
  EXPECT_TRUE(isSubpathOf(folder + "/b", folder));
  EXPECT_FALSE(isSubpathOf(folder + "b", folder));
  EXPECT_FALSE(isSubpathOf("/\u00E9", "/" + repeated("\u00E9", kLarge / 2)));
}

TEST(HugeInput, IsComparedAsAName) {
  const std::string name(kHuge, 'x');
  EXPECT_EQ(compareApplicationResourceNameByWords(name, "x", " "), -1);
  EXPECT_EQ(compareApplicationResourceNameByWords("x", std::string(kLarge / 5, 'x') + " x", " "),
            0);
}

TEST(HugeInput, IsComparedAsANameWithANumber) {
  const std::string name(kLarge / 10, 'x');
  EXPECT_EQ(compareApplicationResourceNameByWords(name, name, " "), 0);
  EXPECT_EQ(compareApplicationResourceNameByWords(name, name + " 2", " "), -1);
  EXPECT_EQ(compareApplicationResourceNameByWords("\u00E9", repeated("\u00C9", kLarge / 50), " "),
            -1);
}

TEST(HugeInput, LosesAnEntryOfItsList) {
  const std::string entries = repeated("x:", kLarge / 10);
  EXPECT_TRUE(areEqual(stringByRemovingSemicolonSeparatedString(entries + "y", "x"), "y"));
}

TEST(HugeInput, IsReplacedInPieces) {
  const std::string text(kHuge, 'a');
  EXPECT_TRUE(areEqual(stringByReplacingOccurrencesOfString(text, "b", "c"), text));
  EXPECT_EQ(stringByReplacingOccurrencesOfString(std::string(kLarge / 10, 'a'), "a", "bc").size(),
            kLarge / 5);
  EXPECT_EQ(stringByReplacingOccurrencesOfString(repeated("\u00E9", kLarge / 50), "e\u0301", "e"),
            std::string(kLarge / 50, 'e'));
}

TEST(HugeInput, MayBeIllFormedFromEndToEndInASearchByExpression) {
  const auto expression = NSRegularExpression::regularExpressionWithPattern(
      "x$", NSRegularExpressionOptions::caseInsensitive);
  ASSERT_NE(expression, nullptr);
  const std::string bytes(kLarge / 10, '\xFF');
  EXPECT_TRUE(isMatchedByRegex(bytes + "x", *expression));
  EXPECT_FALSE(isMatchedByRegex("x" + bytes, *expression));
}

}  // namespace
}  // namespace vornix
