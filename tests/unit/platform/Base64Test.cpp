#include "platform/base/Base64.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "tests/support/PlainBase64.h"
#include "tests/support/RandomInput.h"

namespace vornix::text {
namespace {

using std::string_view_literals::operator""sv;

std::string encoded(std::string_view bytes) {
  return base64Encode(std::as_bytes(std::span(bytes)));
}

std::string decoded(std::string_view text) {
  const Data data = base64Decode(text);
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

struct Row {
  std::string_view bytes;
  std::string_view text;
};

constexpr std::array kPublished{
    Row{"", ""},
    Row{"f", "Zg=="},
    Row{"fo", "Zm8="},
    Row{"foo", "Zm9v"},
    Row{"foob", "Zm9vYg=="},
    Row{"fooba", "Zm9vYmE="},
    Row{"foobar", "Zm9vYmFy"},
    Row{"\0"sv, "AA=="},
    Row{"\0\0"sv, "AAA="},
    Row{"\0\0\0"sv, "AAAA"},
    Row{"\xFF", "/w=="},
    Row{"\xFF\xFF", "//8="},
    Row{"\xFF\xFF\xFF", "////"},
    Row{"\xFB\xEF\xBE", "++++"},
    Row{"\x14\xFB\x9C\x03\xD9\x7E", "FPucA9l+"},
    Row{"\x14\xFB\x9C\x03\xD9", "FPucA9k="},
    Row{"\x14\xFB\x9C\x03", "FPucAw=="},
    Row{"a\0b"sv, "YQBi"},
    Row{"\u00E9", "w6k="},
    Row{"e\u0301", "ZcyB"},
    Row{"\U0001F600", "8J+YgA=="},
    Row{"\uFEFF", "77u/"},
    Row{"\uAC01", "6rCB"},
    Row{"\xED\xA0\xBD", "7aC9"},
    Row{"\x80\xC3", "gMM="},
};

TEST(Base64, EncodesWithTheStandardAlphabetAndPadding) {
  for (const Row& row : kPublished) EXPECT_EQ(encoded(row.bytes), row.text) << row.text;
}

TEST(Base64, DecodesWhatItEncodes) {
  for (const Row& row : kPublished) EXPECT_EQ(decoded(row.text), row.bytes) << row.text;
}

TEST(Base64, BreaksNoLines) {
  const std::string text = encoded(std::string(1000, 'x'));
  EXPECT_EQ(text.size(), 1336U);
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
}

TEST(Base64, DecodesEveryInputInAFixedWay) {
  constexpr std::array rows{
      // Spaces and line ends are skipped wherever they stand.
      Row{"foobar", "Zm9v\nYmFy"},
      Row{"foobar", "Zm9v\r\nYmFy\r\n"},
      Row{"foobar", " Z m 9 v Y m F y "},
      Row{"foob", "Zm9vYg\n=="},
      Row{"", " \r\n"},
      // The first "=" ends the text.
      Row{"f", "Zg=Zm9v"},
      Row{"f", "Zg==Zm9v"},
      Row{"foo", "Zm9v=Zm9v"},
      Row{"", "=Zm9v"},
      Row{"", "===="},
      Row{"fo", "Zm8=\xFF\xFF\xFF"},
      // Missing padding is supplied, and one character left over yields nothing.
      Row{"f", "Zg"},
      Row{"fo", "Zm8"},
      Row{"foo", "Zm9vY"},
      Row{"", "Z"},
      Row{"", "Z="},
      // Spare bits do not matter.
      Row{"f", "Zh=="},
      Row{"f", "Zv"},
      Row{"fo", "Zm/="},
      // Anything else takes a place and repeats what was last stored there, 0 at first.
      Row{"\0\0\0"sv, "----"},
      Row{"\0\0\0"sv, "\t\t\t\t"},
      Row{"foofoo", "Zm9v____"},
      Row{"foofoo", "Zm9v\0\0\0\0"sv},
      Row{"foofoo", "Zm9vZ-9-"},
      Row{"foof", "Zm9vZ\t"},
      Row{"foo", "Zm9v\v"},
      Row{"d\0\0"sv, "Z\u00E9-"},
  };
  for (const Row& row : rows) EXPECT_EQ(decoded(row.text), row.bytes) << row.text;
}

TEST(Base64, RemembersWhatWasStoredAtAPlaceThroughIncompleteGroups) {
  // The values of the groups before, also of those that were skipped over fast.
  EXPECT_EQ(decoded("Zm9vYmFy----"), "foobarbar");
  EXPECT_EQ(decoded("Zm9v-m--YmFy"), "foofoobar");
  EXPECT_EQ(decoded("Zm9v\nZ---"), "foofoo");
}

TEST(Base64, GivesBytesOfEveryLengthBack) {
  tests::RandomInput random(3);
  for (std::size_t length = 0; length <= 300; ++length) {
    const Data data = random.bytes(length);
    const std::string text = base64Encode(data);
    EXPECT_EQ(text, tests::plainBase64Encode(data));
    EXPECT_EQ(base64Decode(text), data) << text;
  }
}

TEST(Base64, GivesTextsOfEveryLengthBack) {
  tests::RandomInput random(4);
  for (std::size_t length = 0; length <= 300; ++length) {
    const std::string text = random.text(length);
    EXPECT_EQ(decoded(encoded(text)), text);
  }
}

TEST(Base64, DecodesAnyBytesAsThePlainDecoderDoes) {
  tests::RandomInput random(5);
  constexpr std::string_view usual =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/ABCDEFGHIJK \r\n\t-_";
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (std::size_t left = random.upTo(90); left > 0; --left) {
      text += random.upTo(60) == 0 ? static_cast<char>(random.upTo(255))
                                   : usual[random.upTo(usual.size() - 1)];
    }
    EXPECT_EQ(base64Decode(text), tests::plainBase64Decode(text)) << text;
  }
}

TEST(Base64, CodesLargeDataInLinesAndWithout) {
  tests::RandomInput random(6);
  const Data data = random.bytes(60'000);
  std::string text = base64Encode(data);
  EXPECT_EQ(base64Decode(text), data);
  for (std::size_t line = 76; line < text.size(); line += 78) text.insert(line, "\r\n");
  EXPECT_EQ(base64Decode(text), data);
}

TEST(Base64, TakesTimeInProportionToHugeInputs) {
  constexpr std::size_t length = 3U << 18U;
  const Data data(length, std::byte{0xA5});
  const std::string text = base64Encode(data);
  EXPECT_EQ(text.size(), length / 3 * 4);
  EXPECT_EQ(base64Decode(text), data);
  EXPECT_EQ(base64Decode(std::string(length, '\n')), Data());
  EXPECT_EQ(base64Decode(std::string(length, '?')), Data(length / 4 * 3));
}

}  // namespace
}  // namespace vornix::text
