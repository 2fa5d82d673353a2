#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/PercentEscapes.h"
#include "platform/base/Text.h"
#include "tests/support/RandomText.h"

namespace vornix::text {
namespace {

using namespace std::string_view_literals;

// Leads, tails and whole characters, so that what comes out is now well-formed and now not; plain
// runs, so that it lies across the blocks in which the work is done.
constexpr std::array kPieces{"a"sv,
                             "Zz09"sv,
                             "0123456789abcdef"sv,
                             " "sv,
                             "%"sv,
                             "%41"sv,
                             "%c3"sv,
                             "%A9"sv,
                             "%E2%82%AC"sv,
                             "%zz"sv,
                             "+&="sv,
                             "-._~"sv,
                             "!$'()*,/:;?@"sv,
                             "\0\x7F\n"sv,
                             "\u00E9"sv,
                             "\u07FF\u0800"sv,
                             "\uD7FF\uE000\uFEFF\uFFFF"sv,
                             "\U0001F600\U0010FFFF"sv,
                             "\x80"sv,
                             "\xBF"sv,
                             "\xC2"sv,
                             "\xE0"sv,
                             "\xED"sv,
                             "\xF0"sv,
                             "\xF4"sv,
                             "\xA0"sv,
                             "\x9F"sv,
                             "\xFF"sv};

// The length of the character at the start; 0 where there is none, as the tables of the standard
// have it.
std::size_t plainCharacterLength(std::string_view text) {
  const auto byteAt = [text](std::size_t index) -> unsigned {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
  };
  const auto isIn = [&](std::size_t index, unsigned first, unsigned last) {
    return byteAt(index) >= first && byteAt(index) <= last;
  };
  const auto isTail = [&](std::size_t index) { return isIn(index, 0x80, 0xBF); };
  if (isIn(0, 0x00, 0x7F)) return 1;
  if (isIn(0, 0xC2, 0xDF)) return isTail(1) ? 2 : 0;
  if (byteAt(0) == 0xE0) return isIn(1, 0xA0, 0xBF) && isTail(2) ? 3 : 0;
  if (byteAt(0) == 0xED) return isIn(1, 0x80, 0x9F) && isTail(2) ? 3 : 0;
  if (isIn(0, 0xE1, 0xEF)) return isTail(1) && isTail(2) ? 3 : 0;
  if (byteAt(0) == 0xF0) return isIn(1, 0x90, 0xBF) && isTail(2) && isTail(3) ? 4 : 0;
  if (isIn(0, 0xF1, 0xF3)) return isTail(1) && isTail(2) && isTail(3) ? 4 : 0;
  if (byteAt(0) == 0xF4) return isIn(1, 0x80, 0x8F) && isTail(2) && isTail(3) ? 4 : 0;
  return 0;
}

bool isPlainlyValid(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = plainCharacterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::optional<std::string> plainlyEscaped(std::string_view text, std::string_view punctuation) {
  if (!isPlainlyValid(text)) return std::nullopt;
  std::string escaped;
  for (const char c : text) {
    const bool stays = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       punctuation.find(c) != std::string_view::npos;
    if (stays) {
      escaped += c;
    } else {
      constexpr std::string_view digits = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(c);
      escaped.append("%").append(1, digits[byte / 16U]).append(1, digits[byte % 16U]);
    }
  }
  return escaped;
}

int plainDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::optional<std::string> plainlyReplaced(std::string_view text) {
  std::string bytes;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (text[index] != '%') {
      bytes += text[index];
      continue;
    }
    if (index + 2 >= text.size()) return std::nullopt;
    const int high = plainDigit(text[index + 1]);
    const int low = plainDigit(text[index + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high * 16 + low);
    index += 2;
  }
  return bytes;
}

std::optional<std::string> plainlyReplacedText(std::string_view text) {
  const auto bytes = plainlyReplaced(text);
  if (!bytes || !isPlainlyValid(text) || !isPlainlyValid(*bytes)) return std::nullopt;
  return bytes->starts_with("\xEF\xBB\xBF") ? bytes->substr(3) : *bytes;
}

// Calls with texts of few pieces, which are often well-formed, and of many.
template <typename Check>
void forRandomTexts(Check check) {
  tests::RandomText random(kPieces);
  for (int round = 0; round < 20'000; ++round) check(random.next(round % 100 == 0 ? 300 : 6));
}

TEST(PercentEscapesRandom, AreThoseThatAByteByByteLoopWrites) {
  int escapedTexts = 0;
  forRandomTexts([&](const std::string& text) {
    const auto escaped = addingPercentEscapes(text);
    ASSERT_EQ(escaped, plainlyEscaped(text, "!$&'()*+,-./:;=?@_~")) << text;
    ASSERT_EQ(addingPercentEscapesToAllButUnreserved(text), plainlyEscaped(text, "-._~")) << text;
    escapedTexts += escaped ? 1 : 0;
  });
  EXPECT_GT(escapedTexts, 1000);
}

TEST(PercentEscapesRandom, AreReplacedAsAByteByByteLoopReplacesThem) {
  int replacedTexts = 0;
  forRandomTexts([&](const std::string& text) {
    ASSERT_EQ(bytesOfPercentEscapes(text), plainlyReplaced(text)) << text;
    const auto replaced = replacingPercentEscapes(text);
    ASSERT_EQ(replaced, plainlyReplacedText(text)) << text;
    replacedTexts += replaced ? 1 : 0;
  });
  EXPECT_GT(replacedTexts, 1000);
}

TEST(Utf8Random, IsValidWhereThePlainDecoderFindsCharactersOnly) {
  int validTexts = 0;
  forRandomTexts([&](const std::string& text) {
    const bool isValid = isValidUtf8(text);
    ASSERT_EQ(isValid, isPlainlyValid(text)) << text;
    validTexts += isValid ? 1 : 0;
  });
  EXPECT_GT(validTexts, 1000);
}

TEST(Utf8Random, IsValidAlsoForEveryPairOfBytesAcrossABlock) {
  for (unsigned first = 0; first < 0x100; ++first) {
    for (unsigned second = 0; second < 0x100; ++second) {
      std::string text(15, 'a');
      text += static_cast<char>(first);
      text += static_cast<char>(second);
      text += "\x80\x80";
      for (std::size_t length = 16; length <= text.size(); ++length) {
        const std::string_view start = std::string_view(text).substr(0, length);
        ASSERT_EQ(isValidUtf8(start), isPlainlyValid(start)) << first << ' ' << second;
      }
    }
  }
}

}  // namespace
}  // namespace vornix::text
