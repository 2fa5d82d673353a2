#include "foundation/NSString+Hashing.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "tests/support/RandomInput.h"

namespace vornix {
namespace {

using std::string_view_literals::operator""sv;

Data dataOf(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

struct Hash {
  std::string_view text;
  std::string_view hash;
};

TEST(NSStringHashing, WritesTheMd5OfTheEmptyText) {
  EXPECT_EQ(md5Hash(""), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(NSStringHashing, WritesTheMd5OfTheUtf8BytesInLowerCaseHexadecimal) {
  constexpr std::array rows{
      Hash{"a", "0cc175b9c0f1b6a831c399e269772661"},
      Hash{"abc", "900150983cd24fb0d6963f7d28e17f72"},
      Hash{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      Hash{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      Hash{"The quick brown fox jumps over the lazy dog", "9e107d9d372bb6826bd81d3542a419d6"},
      Hash{"\u00E9", "66ddcd97cfdeabb2f6fb8a999b4bc76f"},
      Hash{"e\u0301", "5526861fbb1e71a1bda6ac364310a807"},
      Hash{"\u00DF", "e11ce22edb052b40813b1e145b704775"},
      Hash{"\u0130", "1a313f370a5ba8fd5dad6f793d84ff21"},
      Hash{"\u03A3\u03C2", "226b0a814c14cef5acf1158c5a0eff7e"},
      Hash{"\uAC01", "54e53ec18343c10b7789468fe27b5156"},
      Hash{"\u1100\u1161\u11A8", "606c34347b1543dcd90e731878df469a"},
      Hash{"\u200B", "d04a07d89cd16239114920813d6c673b"},
      Hash{"\uFEFF", "ecaa88f7fa0bf610a5a26cf545dcd3aa"},
      Hash{"\u05D0\u202E", "5ec658403cd5d79c85d480615d3953a3"},
      Hash{"\U0001F600", "2a02eac39d716a70ecf37579185927b6"},
      Hash{"a\0b"sv, "70350f6027bce3713f6b76473084309b"},
      Hash{"\0"sv, "93b885adfe0da089cdf634904fd59f71"},
      Hash{"\r\n", "81051bcc2cf1bedf378224b0a93e2877"},
      Hash{"\xED\xA0\xBD", "e8ba4e95226250ecd3817eab591e4ced"},
      Hash{"\xFF\x80", "8a72eb04e26e12be58f5dee1e5280efd"},
      Hash{" ", "7215ee9c7d9dc229d2921a40e899ec5f"},
  };
  for (const Hash& row : rows) EXPECT_EQ(md5Hash(row.text), row.hash) << row.text;
}

TEST(NSStringHashing, WritesTheMd5OfTextsAroundTheLengthOfABlock) {
  constexpr std::array<std::pair<std::size_t, std::string_view>, 8> rows{{
      {55, "ef1772b6dff9a122358552954ad0df65"},
      {56, "3b0c8ac703f828b04c6c197006d17218"},
      {57, "652b906d60af96844ebd21b674f35e93"},
      {63, "b06521f39153d618550606be297466d5"},
      {64, "014842d480b571495a4a0363793f7367"},
      {65, "c743a45e0d2e6a95cb859adae0248435"},
      {4096, "21a199c53f422a380e20b162fb6ebe9c"},
      {1048576, "7202826a7791073fe2787f0c94603278"},
  }};
  for (const auto& [length, hash] : rows) EXPECT_EQ(md5Hash(std::string(length, 'a')), hash);
}

struct Encoded {
  std::string_view bytes;
  std::string_view text;
};

constexpr std::array kEncoded{
    Encoded{"", ""},
    Encoded{"a", "YQ=="},
    Encoded{"abc", "YWJj"},
    Encoded{"message digest", "bWVzc2FnZSBkaWdlc3Q="},
    Encoded{"abcdefghijklmnopqrstuvwxyz", "YWJjZGVmZ2hpamtsbW5vcHFyc3R1dnd4eXo="},
    Encoded{"The quick brown fox jumps over the lazy dog",
            "VGhlIHF1aWNrIGJyb3duIGZveCBqdW1wcyBvdmVyIHRoZSBsYXp5IGRvZw=="},
    Encoded{"\u00E9", "w6k="},
    Encoded{"e\u0301", "ZcyB"},
    Encoded{"\u00DF", "w58="},
    Encoded{"\u0130", "xLA="},
    Encoded{"\u03A3\u03C2", "zqPPgg=="},
    Encoded{"\uAC01", "6rCB"},
    Encoded{"\u1100\u1161\u11A8", "4YSA4YWh4Yao"},
    Encoded{"\u200B", "4oCL"},
    Encoded{"\uFEFF", "77u/"},
    Encoded{"\u05D0\u202E", "15DigK4="},
    Encoded{"\U0001F600", "8J+YgA=="},
    Encoded{"a\0b"sv, "YQBi"},
    Encoded{"\0"sv, "AA=="},
    Encoded{"\r\n", "DQo="},
    Encoded{"\xED\xA0\xBD", "7aC9"},
    Encoded{"\xFF\x80", "/4A="},
    Encoded{" ", "IA=="},
};

TEST(NSStringHashing, EncodesDataInBase64) {
  for (const Encoded& row : kEncoded) EXPECT_EQ(base64enc(dataOf(row.bytes)), row.text);
}

TEST(NSStringHashing, DecodesBase64IntoData) {
  for (const Encoded& row : kEncoded) EXPECT_EQ(base64dec(row.text), dataOf(row.bytes)) << row.text;
}

TEST(NSStringHashing, EncodesLongDataInOneLine) {
  const std::string text = base64enc(Data(4096, std::byte{0x5A}));
  EXPECT_EQ(text.size(), 5464U);
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(NSStringHashing, DecodesWhatIsNoBase64WithoutFailing) {
  constexpr std::array rows{
      Encoded{"foo", "Zm9v="},
      Encoded{"foo", "Zm9v=Zm9v"},
      Encoded{"foo", "Zm\r\n9v\n"},
      Encoded{"foo", " Zm9v "},
      Encoded{"fo", "Zm8"},
      Encoded{"f", "Zg"},
      Encoded{"", "Z"},
      Encoded{"", "="},
      Encoded{"foofoo", "Zm9v----"},
      Encoded{"foofoo", "Zm9v____"},
      Encoded{"\0\0\0"sv, "????"},
      Encoded{"\0"sv, "\t\t"},
      Encoded{"\0"sv, "\u00E9"},
      Encoded{"foofo", "Zm9v\uFEFF="},
      Encoded{"\0\0\0"sv, "\U0001F600"},
  };
  for (const Encoded& row : rows) EXPECT_EQ(base64dec(row.text), dataOf(row.bytes)) << row.text;
}

TEST(NSStringHashing, DecodesNothingFromALoneSurrogateOrIllFormedBytes) {
  for (const auto* text : {"Zm9v\xED\xA0\xBD", "\xFF", "Zg=\xC3", "\xC0\x80"}) {
    EXPECT_EQ(base64dec(text), std::nullopt);
  }
}

TEST(NSStringHashing, GivesAnyDataBackFromBase64) {
  tests::RandomInput random(7);
  for (std::size_t length = 0; length <= 300; ++length) {
    const Data data = random.bytes(length);
    EXPECT_EQ(base64dec(base64enc(data)), data);
  }
}

TEST(NSStringHashing, RunsATransformOnlyWithInput) {
  EXPECT_EQ(base64helper(dataOf("foo"), nullptr), std::nullopt);
  const auto transform = SecEncodeTransformCreate(kSecBase64Encoding);
  EXPECT_EQ(base64helper(std::nullopt, transform.get()), std::nullopt);
  EXPECT_EQ(base64helper(dataOf("foo"), transform.get()), dataOf("Zm9v"));
  EXPECT_EQ(base64helper(Data(), transform.get()), Data());
}

TEST(NSStringHashing, AnswersWhatTheTransformMakesOfTheData) {
  const auto encoder = SecEncodeTransformCreate(kSecBase64Encoding);
  const auto decoder = SecDecodeTransformCreate(kSecBase64Encoding);
  for (const Encoded& row : kEncoded) {
    EXPECT_EQ(base64helper(dataOf(row.bytes), encoder.get()), dataOf(row.text)) << row.text;
    EXPECT_EQ(base64helper(dataOf(row.text), decoder.get()), dataOf(row.bytes)) << row.text;
    // What came before leaves nothing behind, nor does missing input.
    EXPECT_EQ(base64helper(std::nullopt, encoder.get()), std::nullopt) << row.text;
    EXPECT_EQ(base64helper(std::nullopt, decoder.get()), std::nullopt) << row.text;
    EXPECT_EQ(base64helper(dataOf(row.bytes), nullptr), std::nullopt) << row.text;
  }
  EXPECT_EQ(base64helper(std::nullopt, nullptr), std::nullopt);
}

class TransformWithoutInput final : public SecTransform {
 public:
  bool setAttribute(std::string_view /*name*/, std::optional<Data> /*value*/) override {
    return false;
  }
  std::optional<Data> execute() override {
    executed = true;
    return Data();
  }

  bool executed = false;
};

TEST(NSStringHashing, DoesNotRunATransformThatRefusesItsInput) {
  TransformWithoutInput transform;
  EXPECT_EQ(base64helper(dataOf("foo"), &transform), std::nullopt);
  EXPECT_FALSE(transform.executed);
}

}  // namespace
}  // namespace vornix
