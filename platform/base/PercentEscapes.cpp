#include "platform/base/PercentEscapes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/base/Text.h"
#include "platform/base/Utf8Machine.h"

namespace vornix::text {
namespace {

// What each byte becomes: up to three characters and their number, as the word that lies like them
// in memory. Always the whole word is written; what is beyond the number is written over by the
// next.
using Replacement = std::array<char, 4>;
using Replacements = std::array<std::uint32_t, 256>;

unsigned lengthOf(std::uint32_t replacement) {
  constexpr bool lastIsHighest = std::endian::native == std::endian::little;
  return lastIsHighest ? replacement >> 24U : replacement & 0xFFU;
}

constexpr Replacements replacementsKeeping(std::string_view punctuation) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  Replacements replacements{};
  for (unsigned byte = 0; byte < replacements.size(); ++byte) {
    const auto c = static_cast<char>(byte);
    if (isAsciiLetterOrDigit(c) || punctuation.find(c) != std::string_view::npos) {
      replacements[byte] = std::bit_cast<std::uint32_t>(Replacement{c, 0, 0, 1});
    } else {
      replacements[byte] = std::bit_cast<std::uint32_t>(
          Replacement{'%', digits[byte >> 4U], digits[byte & 0xFU], 3});
    }
  }
  return replacements;
}

char* writeReplacement(const Replacements& replacements, char c, char* end) {
  const std::uint32_t replacement = replacements[static_cast<unsigned char>(c)];
  std::memcpy(end, &replacement, sizeof replacement);
  return end + lengthOf(replacement);
}

// Escapes and checks in one pass.
class Escaper {
 public:
  explicit Escaper(const Replacements& replacements) : replacements_(replacements) {}

  // Escapes more of the text to `end`, where there is room for three times as much and one byte.
  // Answers the new end.
  char* escape(std::string_view piece, char* end) {
    while (piece.size() >= kAsciiBlock) {
      const std::string_view block = piece.substr(0, kAsciiBlock);
      const bool isPlain = state_ == kUtf8Accepting && isAsciiBlock(block.data());
      end = isPlain ? escapeAscii(block.data(), end) : escapeChecking(block, end);
      piece.remove_prefix(kAsciiBlock);
    }
    return escapeChecking(piece, end);
  }

  // Whether all that was escaped is one well-formed text.
  [[nodiscard]] bool isWellFormed() const { return state_ == kUtf8Accepting; }

 private:
  char* escapeAscii(const char* block, char* end) const {
    for (std::size_t index = 0; index < kAsciiBlock; ++index) {
      end = writeReplacement(replacements_, block[index], end);
    }
    return end;
  }

  char* escapeChecking(std::string_view bytes, char* end) {
    std::uint64_t state = state_;
    for (const char c : bytes) {
      state = utf8Step(state, c);
      end = writeReplacement(replacements_, c, end);
    }
    state_ = utf8StateOf(state);
    return end;
  }

  const Replacements& replacements_;
  std::uint64_t state_ = kUtf8Accepting;
};

// Escaped in pieces: their longest result fits a small buffer, and the whole is never three times
// as large as it has to be.
constexpr std::size_t kPiece = 1024;

std::optional<std::string> replacingEach(const Replacements& replacements, std::string_view text) {
  Escaper escaper(replacements);
  std::string result;
  result.reserve(std::min(text.size() * 3, text.size() + kPiece * 16));
  std::array<char, kPiece * 3 + 1> buffer;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kPiece);
    const char* const end = escaper.escape(piece, buffer.data());
    result.append(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    text.remove_prefix(piece.size());
  }
  if (!escaper.isWellFormed()) return std::nullopt;
  return result;
}

constexpr std::uint8_t kNoDigit = 0x10;

constexpr std::array<std::uint8_t, 256> digitValues() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (unsigned value = 0; value < 16; ++value) {
    values[static_cast<unsigned char>("0123456789ABCDEF"[value])] =
        static_cast<std::uint8_t>(value);
    values[static_cast<unsigned char>("0123456789abcdef"[value])] =
        static_cast<std::uint8_t>(value);
  }
  return values;
}

// Takes the escape at the start of `text`; false when there is none.
bool takeEscape(std::string_view& text, char& byte) {
  static constexpr auto values = digitValues();
  if (text.size() < 3) return false;
  const unsigned high = values[static_cast<unsigned char>(text[1])];
  const unsigned low = values[static_cast<unsigned char>(text[2])];
  if (((high | low) & kNoDigit) != 0) return false;
  byte = static_cast<char>(high << 4U | low);
  text.remove_prefix(3);
  return true;
}

}  // namespace

std::optional<std::string> addingPercentEscapes(std::string_view text) {
  static constexpr auto replacements = replacementsKeeping("!$&'()*+,-./:;=?@_~");
  return replacingEach(replacements, text);
}

std::optional<std::string> addingPercentEscapesToAllButUnreserved(std::string_view text) {
  static constexpr auto replacements = replacementsKeeping("-._~");
  return replacingEach(replacements, text);
}

std::optional<std::string> replacingPercentEscapes(std::string_view text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  // Raw bytes may not complete what an escape began, as a text has none that stand alone.
  if (!isValidUtf8(text)) return std::nullopt;
  auto decoded = bytesOfPercentEscapes(text);
  if (!decoded || !isValidUtf8(*decoded)) return std::nullopt;
  if (decoded->starts_with(byteOrderMark)) decoded->erase(0, byteOrderMark.size());
  return decoded;
}

std::optional<std::string> bytesOfPercentEscapes(std::string_view escaped) {
  std::string bytes;
  bytes.reserve(escaped.size());
  while (!escaped.empty()) {
    const std::string_view plain = escaped.substr(0, escaped.find('%'));
    bytes.append(plain);
    escaped.remove_prefix(plain.size());
    while (escaped.starts_with('%')) {
      char byte = 0;
      if (!takeEscape(escaped, byte)) return std::nullopt;
      bytes += byte;
    }
  }
  return bytes;
}

}  // namespace vornix::text
