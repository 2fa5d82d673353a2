#include "platform/text/CaseMapping.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <array>
#include <string>

#include "platform/base/DecimalDigit.h"
#include "platform/base/Text.h"
#include "platform/base/Utf8.h"
#include "platform/linux/system/SharedLibrary.h"
#include "platform/linux/text/Icu.h"
#include "platform/text/CharacterProperties.h"
#include "tests/support/RandomText.h"

// ICU's functions carry its version in their names, which the headers add by macros.
#define VORNIX_TEXT_OF(name) #name
#define VORNIX_NAME_OF(function) VORNIX_TEXT_OF(function)

namespace vornix::text {
namespace {

using namespace std::string_view_literals;

constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr char32_t kLastCharacterWithCase = 0x1FFFF;

std::string textOf(const FewCharacters& few) {
  std::string text;
  for (const char32_t c : few) appendCharacter(text, c);
  return text;
}

TEST(CaseMapping, PutsTextsInLowerCaseWithoutAnyLocale) {
  struct Row {
    std::string_view text;
    std::string_view lower;
  };
  constexpr std::array rows{Row{"", ""},
                            Row{"abc", "abc"},
                            Row{"ABC xyz 123", "abc xyz 123"},
                            Row{"A\0B"sv, "a\0b"sv},
                            Row{"\u00C9T\u00C9", "\u00E9t\u00E9"},
                            Row{"E\u0301", "e\u0301"},
                            Row{"I", "i"},
                            Row{"\u0130", "i\u0307"},
                            Row{"\u0131", "\u0131"},
                            Row{"\u212A\u212B", "k\u00E5"},
                            Row{"\u1E9E\u00DF", "\u00DF\u00DF"},
                            Row{"\u01C5", "\u01C6"},
                            Row{"\u1F88", "\u1F80"},
                            Row{"\u023A", "\u2C65"},
                            Row{"\u2167", "\u2177"},
                            Row{"\uFF21", "\uFF41"},
                            Row{"\u10A0", "\u2D00"},
                            Row{"\u13A0", "\uAB70"},
                            Row{"\uD55C\u05D0\u200B\uFEFF", "\uD55C\u05D0\u200B\uFEFF"},
                            Row{"\U00010400\U0001E900", "\U00010428\U0001E922"},
                            Row{"\U0001F600", "\U0001F600"}};
  for (const Row& row : rows) {
    EXPECT_EQ(lowercase(row.text), row.lower) << row.text;
  }
}

TEST(CaseMapping, GivesSigmaItsFinalFormAtTheEndOfAWord) {
  EXPECT_EQ(lowercase("\u039F\u0394\u039F\u03A3"), "\u03BF\u03B4\u03BF\u03C2");
  EXPECT_EQ(lowercase("\u03A3\u039F\u03A3 \u03A3"), "\u03C3\u03BF\u03C2 \u03C3");
  EXPECT_EQ(lowercase("\u0391\u03A3\u0301"), "\u03B1\u03C2\u0301");
  EXPECT_EQ(lowercase("\u0391\u03A3\u0392"), "\u03B1\u03C3\u03B2");
  EXPECT_EQ(lowercase("\u0391\u03A3\xFF\u0392"), "\u03B1\u03C2\xFF\u03B2");
}

TEST(CaseMapping, KeepsIllFormedBytesAndLoneSurrogates) {
  EXPECT_EQ(lowercase("A\xFF"
                      "B\xC3"
                      "C"),
            "a\xFF"
            "b\xC3"
            "c");
  EXPECT_EQ(lowercase("\u00C9\xED\xA0\x80\u00C9"), "\u00E9\xED\xA0\x80\u00E9");
  EXPECT_EQ(lowercase("\u00C9\xED\xA0\x80\xED\xB0\x80"), "\u00E9\xED\xA0\x80\xED\xB0\x80");
  EXPECT_EQ(lowercase("\xF0\x9F\x98"), "\xF0\x9F\x98");
}

TEST(CaseMapping, LowersEveryAsciiTextAsTheGeneralWayDoes) {
  constexpr std::array pieces{"a"sv, "Z"sv, "@["sv, "`{"sv, "1"sv, "\0"sv, "I"sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 1000; ++round) {
    const std::string text = random.next(12);
    // A letter behind a space touches nothing in front of it.
    ASSERT_EQ(lowercase(text) + " \u00E9", lowercase(text + " \u00C9"));
  }
}

TEST(CaseMapping, LowersNothingMoreTheSecondTime) {
  for (char32_t c = 0; c <= kLastCharacterWithCase; ++c) {
    std::string text;
    appendCharacter(text, c);
    const std::string once = lowercase(text);
    ASSERT_EQ(lowercase(once), once) << std::hex << static_cast<unsigned>(c);
  }
}

TEST(CaseMapping, LowersNothingBeyondTheLastCharacterWithCase) {
  std::string text;
  for (char32_t c = kLastCharacterWithCase + 1; c <= kLastCharacter; ++c) appendCharacter(text, c);
  EXPECT_TRUE(lowercase(text) == text);
}

TEST(CaseMapping, LowersHugeTexts) {
  constexpr std::size_t letters = 500'000;
  std::string capitals;
  std::string broken;
  for (std::size_t index = 0; index < letters; ++index) capitals += "\u023A";
  for (std::size_t index = 0; index < letters; ++index) broken += "\u00C9\xFF";
  EXPECT_EQ(lowercase(capitals).size(), 3 * letters);
  EXPECT_EQ(lowercase(broken).substr(0, 6), "\u00E9\xFF\u00E9\xFF");
  EXPECT_EQ(lowercase(broken).size(), 3 * letters);
}

TEST(CaseMapping, PutsOneCharacterInTitleCase) {
  struct Row {
    char32_t character;
    std::string_view title;
  };
  constexpr std::array rows{Row{U'a', "A"},
                            Row{U'A', "A"},
                            Row{U'i', "I"},
                            Row{U'1', "1"},
                            Row{U' ', " "},
                            Row{0, "\0"sv},
                            Row{0xE9, "\u00C9"},
                            Row{0xDF, "Ss"},
                            Row{0x149, "\u02BCN"},
                            Row{0xFB01, "Fi"},
                            Row{0xFB03, "Ffi"},
                            Row{0x1C4, "\u01C5"},
                            Row{0x1C5, "\u01C5"},
                            Row{0x1C6, "\u01C5"},
                            Row{0x1F80, "\u1F88"},
                            Row{0x1F0, "J\u030C"},
                            Row{0x345, "\u0399"},
                            Row{0x131, "I"},
                            Row{0x130, "\u0130"},
                            Row{0x10D0, "\u10D0"},
                            Row{0x3C2, "\u03A3"},
                            Row{0x301, "\u0301"},
                            Row{0xD55C, "\uD55C"},
                            Row{0x5D0, "\u05D0"},
                            Row{0x200B, "\u200B"},
                            Row{0xFEFF, "\uFEFF"},
                            Row{0xD800, "\xED\xA0\x80"},
                            Row{0x10428, "\U00010400"}};
  for (const Row& row : rows) {
    EXPECT_EQ(titlecase(row.character), row.title)
        << std::hex << static_cast<unsigned>(row.character);
  }
}

TEST(CaseMapping, FoldsWhatCaseDistinguishes) {
  struct Row {
    char32_t character;
    std::string_view folded;
  };
  constexpr std::array rows{Row{U'a', "a"},
                            Row{U'A', "a"},
                            Row{U'Z', "z"},
                            Row{U'@', "@"},
                            Row{U'[', "["},
                            Row{U'1', "1"},
                            Row{0xC9, "\u00E9"},
                            Row{0xDF, "ss"},
                            Row{0x1E9E, "ss"},
                            Row{0x17F, "s"},
                            Row{0x212A, "k"},
                            Row{0x130, "i\u0307"},
                            Row{0x131, "\u0131"},
                            Row{0x3A3, "\u03C3"},
                            Row{0x3C2, "\u03C3"},
                            Row{0xFB03, "ffi"},
                            Row{0x1F88, "\u1F00\u03B9"},
                            Row{0x345, "\u03B9"},
                            Row{0xD55C, "\uD55C"},
                            Row{0x10400, "\U00010428"},
                            Row{0xD800, "\xED\xA0\x80"}};
  for (const Row& row : rows) {
    EXPECT_EQ(textOf(caseFolded(row.character)), row.folded)
        << std::hex << static_cast<unsigned>(row.character);
  }
}

TEST(CharacterProperties, TakeCharactersApart) {
  struct Row {
    char32_t character;
    std::string_view parts;
  };
  constexpr std::array rows{Row{U'a', "a"},
                            Row{0, "\0"sv},
                            Row{0xE9, "e\u0301"},
                            Row{0x1E69, "s\u0323\u0307"},
                            Row{0x1F82, "\u03B1\u0313\u0300\u0345"},
                            Row{0x212A, "K"},
                            Row{0x212B, "A\u030A"},
                            Row{0x37E, ";"},
                            Row{0xAC00, "\u1100\u1161"},
                            Row{0xD55C, "\u1112\u1161\u11AB"},
                            Row{0x1112, "\u1112"},
                            Row{0xF900, "\u8C48"},
                            Row{0x2F800, "\u4E3D"},
                            Row{0xFB00, "\uFB00"},
                            Row{0xDF, "\u00DF"},
                            Row{0x130, "I\u0307"},
                            Row{0x958, "\u0915\u093C"},
                            Row{0x344, "\u0308\u0301"},
                            Row{0x1D15E, "\U0001D157\U0001D165"},
                            Row{0x1F600, "\U0001F600"},
                            Row{0xD800, "\xED\xA0\x80"},
                            Row{0x10FFFF, "\U0010FFFF"}};
  for (const Row& row : rows) {
    EXPECT_EQ(textOf(canonicalDecomposition(row.character)), row.parts)
        << std::hex << static_cast<unsigned>(row.character);
  }
}

TEST(CharacterProperties, KnowMarksAndTheirClasses) {
  for (const char32_t mark : {0x301, 0x323, 0x345, 0x5B0, 0x93E, 0x20E3, 0xFE0F, 0x1D165, 0xE0100})
    EXPECT_TRUE(isMark(mark)) << std::hex << static_cast<unsigned>(mark);
  for (const char32_t other : {0x0, 0x61, 0xA8, 0x200D, 0x200B, 0x1160, 0xD800, 0x1F3FB, 0x10FFFF})
    EXPECT_FALSE(isMark(other)) << std::hex << static_cast<unsigned>(other);
  EXPECT_EQ(combiningClass(U'a'), 0);
  EXPECT_EQ(combiningClass(0x301), 230);
  EXPECT_EQ(combiningClass(0x323), 220);
  EXPECT_EQ(combiningClass(0x345), 240);
  EXPECT_EQ(combiningClass(0x93E), 0);
}

// What the search for composed sequences relies on.
TEST(CharacterProperties, ReorderNothingButMarks) {
  for (char32_t c = 0; c <= kLastCharacter; ++c) {
    if (combiningClass(c) != 0) {
      ASSERT_TRUE(isMark(c)) << std::hex << static_cast<unsigned>(c);
    }
  }
}

TEST(CharacterProperties, FindNoMarkAndNoLetterOfASyllableBelowTheFirstMark) {
  for (char32_t c = 0; c < 0x300; ++c) ASSERT_FALSE(isMark(c));
}

// The edition of Unicode that our digits are those of; a later one may have more.
constexpr unsigned kUnicode = 15;

// The first number of the edition that brought the character; 0 for what is none yet.
unsigned editionOf(const decltype(&u_charAge) age, char32_t c) {
  UVersionInfo version{};
  age(static_cast<UChar32>(c), version);
  return version[0];
}

TEST(DecimalDigit, IsWhatUnicodeSaysForEveryCharacterThatWeKnow) {
  const IcuCharacters* icu = IcuCharacters::shared();
  ASSERT_NE(icu, nullptr);
  const auto library = SharedLibrary::open("libicuuc.so." U_ICU_VERSION_SHORT, nullptr);
  ASSERT_TRUE(library);
  decltype(&u_charAge) age = nullptr;
  ASSERT_TRUE(library->bind(age, VORNIX_NAME_OF(u_charAge), nullptr));
  for (char32_t c = 0; c <= kLastCharacter; ++c) {
    if (editionOf(age, c) > kUnicode) {
      EXPECT_FALSE(isDecimalDigit(c)) << std::hex << static_cast<unsigned>(c);
      continue;
    }
    const bool expected = icu->category(static_cast<UChar32>(c)) == U_DECIMAL_DIGIT_NUMBER;
    ASSERT_EQ(isDecimalDigit(c), expected) << std::hex << static_cast<unsigned>(c);
  }
}

TEST(Icu, SaysWhichLibraryIsMissing) {
  std::string why;
  EXPECT_FALSE(IcuCharacters::load("libvornix-none.so.1", &why));
  EXPECT_NE(why.find("libvornix-none.so.1"), std::string::npos) << why;
  EXPECT_FALSE(IcuExpressions::load("libvornix-none.so.1", &why));
}

TEST(Icu, SaysWhatTheLibraryLacks) {
  std::string why;
  EXPECT_FALSE(IcuCharacters::load("libm.so.6", &why));
  EXPECT_NE(why.find("no function ucasemap_open"), std::string::npos) << why;
  EXPECT_FALSE(IcuExpressions::load("libm.so.6", &why));
  EXPECT_NE(why.find("no function uregex_open"), std::string::npos) << why;
}

}  // namespace
}  // namespace vornix::text
