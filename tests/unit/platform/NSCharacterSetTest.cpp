#include "platform/text/NSCharacterSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/base/DecimalDigit.h"
#include "platform/base/Text.h"

namespace vornix {
namespace {

constexpr char32_t kLastCharacter = 0x10FFFF;

std::vector<char32_t> membersOf(const NSCharacterSet& set) {
  std::vector<char32_t> members;
  for (char32_t c = 0; c <= kLastCharacter; ++c) {
    if (set.characterIsMember(c)) members.push_back(c);
  }
  return members;
}

const std::vector<char32_t> kNewlines{0x0A, 0x0B, 0x0C, 0x0D, 0x85, 0x2028, 0x2029};
const std::vector<char32_t> kBlanks{0x09,   0x20,   0xA0,   0x1680, 0x2000, 0x2001, 0x2002,
                                    0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008, 0x2009,
                                    0x200A, 0x200B, 0x202F, 0x205F, 0x3000};

TEST(NSCharacterSet, HoldsThePlatformsLineEnds) {
  EXPECT_EQ(membersOf(NSCharacterSet::newlineCharacterSet()), kNewlines);
}

TEST(NSCharacterSet, HoldsThePlatformsWhiteSpace) {
  EXPECT_EQ(membersOf(NSCharacterSet::whitespaceCharacterSet()), kBlanks);
}

TEST(NSCharacterSet, HoldsWhiteSpaceAndLineEndsTogether) {
  std::vector<char32_t> both(kNewlines);
  both.insert(both.end(), kBlanks.begin(), kBlanks.end());
  std::ranges::sort(both);
  EXPECT_EQ(membersOf(NSCharacterSet::whitespaceAndNewlineCharacterSet()), both);
}

TEST(NSCharacterSet, LeavesOutWhatOnlyLooksLikeWhiteSpace) {
  const auto set = NSCharacterSet::whitespaceAndNewlineCharacterSet();
  for (const char32_t c : {0x180E, 0x2060, 0xFEFF, 0x001C, 0x001D, 0x001E, 0x001F, 0x200C}) {
    EXPECT_FALSE(set.characterIsMember(c)) << std::hex << static_cast<unsigned>(c);
  }
}

TEST(NSCharacterSet, HoldsTheDecimalDigitsOfEveryScript) {
  const auto digits = membersOf(NSCharacterSet::decimalDigitCharacterSet());
  EXPECT_EQ(digits.size(), 680U);
  EXPECT_TRUE(std::ranges::all_of(digits, text::isDecimalDigit));
  const auto set = NSCharacterSet::decimalDigitCharacterSet();
  for (const char32_t c : {0x30, 0x39, 0x0660, 0x096F, 0xFF10, 0x1D7FF, 0x1E950}) {
    EXPECT_TRUE(set.characterIsMember(c)) << std::hex << static_cast<unsigned>(c);
  }
  // Superscript, fraction, Roman and Chinese numerals.
  for (const char32_t c : {0x2F, 0x3A, 0xB2, 0xBD, 0x2163, 0x4E00, 0x4E09}) {
    EXPECT_FALSE(set.characterIsMember(c)) << std::hex << static_cast<unsigned>(c);
  }
}

TEST(NSCharacterSet, HoldsTheCharactersOfAString) {
  const auto set =
      NSCharacterSet::characterSetWithCharactersInString("zaa\u00E9\U0001F600e\u0301\xFF");
  EXPECT_EQ(membersOf(set), (std::vector<char32_t>{U'a', U'e', U'z', 0x00E9, 0x0301, 0x1F600}));
}

TEST(NSCharacterSet, HoldsNothingForTheEmptyString) {
  EXPECT_TRUE(membersOf(NSCharacterSet::characterSetWithCharactersInString("")).empty());
}

TEST(NSCharacterSet, InvertsItself) {
  const auto set = NSCharacterSet::characterSetWithCharactersInString("a");
  const auto others = set.invertedSet();
  EXPECT_FALSE(others.characterIsMember(U'a'));
  EXPECT_TRUE(others.characterIsMember(U'b'));
  EXPECT_TRUE(others.characterIsMember(0x10FFFF));
  EXPECT_TRUE(others.characterIsMember(0xD800));
  EXPECT_TRUE(others.invertedSet().characterIsMember(U'a'));
  EXPECT_EQ(membersOf(others).size(), kLastCharacter);
}

TEST(NSCharacterSet, HoldsNoIllFormedByteEvenWhenInverted) {
  const auto illFormed = text::decodeCharacter("\xE9");
  const auto latin = NSCharacterSet::characterSetWithCharactersInString("\u00E9");
  EXPECT_TRUE(latin.characterIsMember(0xE9));
  EXPECT_FALSE(latin.characterIsMember(illFormed));
  EXPECT_FALSE(latin.invertedSet().characterIsMember(illFormed));
}

}  // namespace
}  // namespace vornix
