#include "platform/system/StringsFile.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/system/TextPropertyList.h"

namespace vornix {
namespace {

std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8U);
    const char low = static_cast<char>(unit & 0xFFU);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

TEST(StringsFileTest, ReadsKeysValuesAndComments) {
  const auto texts = parseStringsFile(R"(/* A comment; with "text" */
"Launch" = "Starten"; // to the end
word=other.word;
"Alone";
"Quotes" = "say \"yes\"\n\tand \\ no\U00fc\U0000e9";
"Same" = "first"; "Same" = "last")");
  EXPECT_EQ(texts, (Dictionary{{"Launch", "Starten"},
                               {"word", "other.word"},
                               {"Alone", "Alone"},
                               {"Quotes", std::string("say \"yes\"\n\tand \\ no\u00fc") +
                                              std::string("\0e9", 3)},
                               {"Same", "last"}}));
}

TEST(StringsFileTest, ReadsUtf16WithAByteOrderMarkAndUtf8WithOne) {
  const std::u16string_view text = u"\"K\u00e4se\" = \"\U0001F9C0\";";
  const Dictionary expected{{"K\u00e4se", "\U0001F9C0"}};
  EXPECT_EQ(parseStringsFile("\xFE\xFF" + utf16(text, true)), expected);
  EXPECT_EQ(parseStringsFile("\xFF\xFE" + utf16(text, false)), expected);
  EXPECT_EQ(parseStringsFile("\xEF\xBB\xBF\"K\u00e4se\" = \"\U0001F9C0\";"), expected);
}

TEST(StringsFileTest, JoinsEscapedSurrogatePairs) {
  EXPECT_EQ(parseStringsFile(R"("a" = "\Ud83e\Uddc0";)"), (Dictionary{{"a", "\U0001F9C0"}}));
}

TEST(StringsFileTest, PassesOverLinesThatAreNone) {
  EXPECT_EQ(parseStringsFile(R"(= ; ( } "a" = "1"; "b" = {x}; "c" "d"; "e" = "2";)"),
            (Dictionary{{"e", "2"}, {"c", "c"}}));
}

TEST(StringsFileTest, EndsAnUnterminatedTextWithTheFile) {
  EXPECT_EQ(parseStringsFile("\"a\" = \"1\\"), (Dictionary{{"a", "1\\"}}));
  EXPECT_EQ(parseStringsFile("\"a"), (Dictionary{{"a", "a"}}));
  EXPECT_TRUE(parseStringsFile("/* never closed").empty());
  EXPECT_TRUE(parseStringsFile("").empty());
  EXPECT_TRUE(parseStringsFile("\xFE\xFF").empty());
  EXPECT_TRUE(parseStringsFile("\xFF\xFE\x22").empty());
}

TEST(StringsFileTest, SurvivesEveryPrefixAndEveryChangedByte) {
  const std::string whole = "/* c */ \"k\\U00e4\" = \"v\\101\"; // x\nword = 'w';\xC3\xA4 = <ab>;";
  for (std::size_t index = 0; index < whole.size(); ++index) {
    static_cast<void>(parseStringsFile(whole.substr(0, index)));
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = whole;
      changed[index] = static_cast<char>(byte);
      EXPECT_LE(parseStringsFile(changed).size(), 12U);
    }
  }
}

TEST(TextPropertyListTest, ReadsEveryKind) {
  EXPECT_EQ(parseTextPropertyList(" word "), Value("word"));
  EXPECT_EQ(parseTextPropertyList("12"), Value("12"));
  EXPECT_EQ(parseTextPropertyList("'two words'"), Value("two words"));
  EXPECT_EQ(parseTextPropertyList("(a, (b), )"), Value(Array{"a", Array{"b"}}));
  EXPECT_EQ(parseTextPropertyList("{a = 1; \"b c\" = {};}"),
            Value(Dictionary{{"a", "1"}, {"b c", Dictionary()}}));
  EXPECT_EQ(parseTextPropertyList("<0aFF 10>"),
            Value(Data{std::byte{0x0a}, std::byte{0xff}, std::byte{0x10}}));
}

TEST(TextPropertyListTest, RefusesAnythingElse) {
  for (const char* text : {"", "two words", "(a", "{a = ;}", "<0>", "<0g>", "(a b)", ")", "{=;}"}) {
    EXPECT_EQ(parseTextPropertyList(text), std::nullopt) << text;
  }
}

TEST(TextPropertyListTest, RefusesNestingBeyondItsBound) {
  EXPECT_EQ(parseTextPropertyList(std::string(100000, '(')), std::nullopt);
  const std::string deep = std::string(50, '(') + std::string(50, ')');
  EXPECT_NE(parseTextPropertyList(deep), std::nullopt);
}

}  // namespace
}  // namespace vornix
