#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/NSString+URLAdditions.h"
#include "tests/support/RandomInput.h"

namespace vornix {
namespace {

using std::string_view_literals::operator""sv;

struct Row {
  std::string_view text;
  std::optional<std::string_view> answer;
};

TEST(NSStringURLEscapes, EncodesAllButUnreservedCharacters) {
  constexpr std::array rows{
      Row{"", ""},
      Row{"AZaz09-._~", "AZaz09-._~"},
      Row{"!*'();:@&=+$,/?%#[]", "%21%2A%27%28%29%3B%3A%40%26%3D%2B%24%2C%2F%3F%25%23%5B%5D"},
      Row{"a b", "a%20b"},
      Row{"a+b", "a%2Bb"},
      Row{"%20", "%2520"},
      Row{"\"<>\\^`{|}", "%22%3C%3E%5C%5E%60%7B%7C%7D"},
      Row{"\t\r\n", "%09%0D%0A"},
      Row{"a\0b"sv, "a%00b"},
      Row{"\x7F", "%7F"},
      Row{"\u00E9", "%C3%A9"},
      Row{"e\u0301", "e%CC%81"},
      Row{"\u00DF\u0130\u03C2", "%C3%9F%C4%B0%CF%82"},
      Row{"\uAC01", "%EA%B0%81"},
      Row{"\u200B", "%E2%80%8B"},
      Row{"\uFEFF", "%EF%BB%BF"},
      Row{"\u05D0\u202E", "%D7%90%E2%80%AE"},
      Row{"\U0001F600", "%F0%9F%98%80"},
      Row{"\xEF\xBF\xBF", "%EF%BF%BF"},
      Row{"a\xED\xA0\xBD", std::nullopt},
      Row{"\xED\xB0\x80z", std::nullopt},
      Row{"\xC3", std::nullopt},
      Row{"\xFF", std::nullopt},
  };
  for (const Row& row : rows) EXPECT_EQ(stringByEncodingURLEscapes(row.text), row.answer);
}

TEST(NSStringURLEscapes, DecodesAPlusSignBeforeEscapesSoThatAnEscapedPlusSignSurvives) {
  EXPECT_EQ(stringByDecodingURLEscapes("+"), " ");
  EXPECT_EQ(stringByDecodingURLEscapes("%20"), " ");
  EXPECT_EQ(stringByDecodingURLEscapes("%2B"), "+");
  EXPECT_EQ(stringByDecodingURLEscapes("a+%2B%20b"), "a + b");
}

TEST(NSStringURLEscapes, DecodesOneLevelOfEscapes) {
  constexpr std::array rows{
      Row{"", ""},
      Row{"plain", "plain"},
      Row{"++", "  "},
      Row{"+\u0301", " \u0301"},
      Row{"%252B", "%2B"},
      Row{"%41%7a", "Az"},
      Row{"%C3%A9+\u00E9", "\u00E9 \u00E9"},
      Row{"%00", "\0"sv},
      Row{"%F0%9F%98%80", "\U0001F600"},
      Row{"%EA%B0%81%E2%80%8B", "\uAC01\u200B"},
      Row{"%EF%BB%BFa", "a"},
      Row{"a%EF%BB%BF", "a\uFEFF"},
      Row{"+%EF%BB%BF", " \uFEFF"},
      Row{"%EF%BF%BE", "\xEF\xBF\xBE"},
      Row{"%2+0", std::nullopt},
      Row{"%+20", std::nullopt},
      Row{"%", std::nullopt},
      Row{"50%", std::nullopt},
      Row{"%zz", std::nullopt},
      Row{"%C3", std::nullopt},
      Row{"%C0%80", std::nullopt},
      Row{"%ED%A0%BD", std::nullopt},
      Row{"%F4%90%80%80", std::nullopt},
      Row{"a\xED\xA0\xBD", std::nullopt},
      Row{"%C3\xA9", std::nullopt},
  };
  for (const Row& row : rows) EXPECT_EQ(stringByDecodingURLEscapes(row.text), row.answer);
}

TEST(NSStringURLEscapes, GivesAnyTextBack) {
  tests::RandomInput random(8);
  for (std::size_t length = 0; length <= 300; ++length) {
    const std::string text = "." + random.text(length);
    const auto escaped = stringByEncodingURLEscapes(text);
    ASSERT_TRUE(escaped);
    EXPECT_EQ(stringByDecodingURLEscapes(*escaped), text);
  }
}

}  // namespace
}  // namespace vornix
