#include "platform/base/Base64.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace vornix::text {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using Pair = std::array<char, 2>;
using Group = std::array<std::uint8_t, 4>;

// The two characters of every twelve bits.
constexpr std::array<Pair, 4096> charactersOfTwelveBits() {
  std::array<Pair, 4096> pairs{};
  for (std::size_t bits = 0; bits < pairs.size(); ++bits) {
    pairs[bits] = {kAlphabet[bits >> 6U], kAlphabet[bits & 63U]};
  }
  return pairs;
}

constexpr auto kPairs = charactersOfTwelveBits();

// The characters of the twelve bits that are the lowest.
void writePair(std::uint64_t bits, char* characters) {
  std::memcpy(characters, kPairs[bits & 0xFFFU].data(), sizeof(Pair));
}

// The bytes as one number, written out so that the compiler sees a single load.
inline std::uint64_t bitsOf(const std::byte* bytes) {
  const auto at = [bytes](std::size_t place) {
    return std::to_integer<std::uint64_t>(bytes[place]) << (56 - 8 * place);
  };
  return at(0) | at(1) | at(2) | at(3) | at(4) | at(5) | at(6) | at(7);
}

// Two groups from six bytes; that there are two more only saves reading byte by byte.
void encodeTwoGroups(const std::byte* bytes, char* characters) {
  const std::uint64_t bits = bitsOf(bytes);
  writePair(bits >> 52U, characters);
  writePair(bits >> 40U, characters + 2);
  writePair(bits >> 28U, characters + 4);
  writePair(bits >> 16U, characters + 6);
}

// One group from one to three bytes, padded.
void encodeGroup(std::span<const std::byte> bytes, char* characters) {
  std::array<std::byte, 8> filled{};
  std::memcpy(filled.data(), bytes.data(), bytes.size());
  const std::uint64_t bits = bitsOf(filled.data());
  writePair(bits >> 52U, characters);
  writePair(bits >> 40U, characters + 2);
  if (bytes.size() < 2) characters[2] = '=';
  if (bytes.size() < 3) characters[3] = '=';
}

enum Kind : std::uint8_t { kSkipped = 64, kEnd = 65, kForeign = 66 };

// The value of each character, or what else it is.
constexpr std::array<std::uint8_t, 256> valuesOfCharacters() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kForeign);
  for (std::size_t value = 0; value < kAlphabet.size(); ++value) {
    values[static_cast<unsigned char>(kAlphabet[value])] = static_cast<std::uint8_t>(value);
  }
  for (const char c : {' ', '\n', '\r'}) values[static_cast<unsigned char>(c)] = kSkipped;
  values['='] = kEnd;
  return values;
}

constexpr auto kValues = valuesOfCharacters();

constexpr Group bytesOfValues(const Group& values) {
  return {static_cast<std::uint8_t>(values[0] << 2U | values[1] >> 4U),
          static_cast<std::uint8_t>(values[1] << 4U | values[2] >> 2U),
          static_cast<std::uint8_t>(values[2] << 6U | values[3]), 0};
}

// For each place of a group and each character there what it adds to the group's three bytes, as
// the word that lies like them in memory; the fourth byte marks what is no character of the
// alphabet.
using Words = std::array<std::uint32_t, 256>;
constexpr std::uint32_t kMark = std::bit_cast<std::uint32_t>(Group{0, 0, 0, 0xFF});

constexpr std::array<Words, 4> wordsOfPlaces() {
  std::array<Words, 4> words{};
  for (std::size_t place = 0; place < words.size(); ++place) {
    for (std::size_t character = 0; character < words[place].size(); ++character) {
      Group group{};
      group[place] = kValues[character];
      const bool inAlphabet = kValues[character] < kAlphabet.size();
      words[place][character] =
          inAlphabet ? std::bit_cast<std::uint32_t>(bytesOfValues(group)) : kMark;
    }
  }
  return words;
}

constexpr auto kWords = wordsOfPlaces();

class Decoder {
 public:
  Decoder(std::string_view text, std::byte* out) : text_(text), out_(out) {}

  // Where the result ends. Writes up to a byte beyond it.
  std::byte* decode() {
    while (!ended_ && !text_.empty()) {
      takePlainGroups();
      takeAnyGroup();
    }
    return out_;
  }

 private:
  static unsigned char at(const char* group, std::size_t place) {
    return static_cast<unsigned char>(group[place]);
  }

  void takePlainGroups() {
    const char* group = text_.data();
    const char* const end = group + text_.size() / 4 * 4;
    std::byte* out = out_;
    for (; group != end; group += 4) {
      const std::uint32_t word = kWords[0][at(group, 0)] | kWords[1][at(group, 1)] |
                                 kWords[2][at(group, 2)] | kWords[3][at(group, 3)];
      if ((word & kMark) != 0) break;
      std::memcpy(out, &word, sizeof word);
      out += 3;
    }
    out_ = out;
    const auto taken = static_cast<std::size_t>(group - text_.data());
    if (taken != 0) remember(group - 4);
    text_.remove_prefix(taken);
  }

  void remember(const char* group) {
    for (std::size_t place = 0; place < stored_.size(); ++place) {
      stored_[place] = kValues[at(group, place)];
    }
  }

  // One group, with whatever stands between its characters and in their places; or the last.
  void takeAnyGroup() {
    std::size_t place = 0;
    while (place < stored_.size() && !text_.empty() && !ended_) {
      const std::uint8_t value = kValues[at(text_.data(), 0)];
      text_.remove_prefix(1);
      ended_ = value == kEnd;
      if (value < kAlphabet.size()) stored_[place] = value;
      if (value != kEnd && value != kSkipped) ++place;
    }
    write(place);
  }

  void write(std::size_t places) {
    if (places < 2) return;
    Group known{};
    std::memcpy(known.data(), stored_.data(), places);
    const Group bytes = bytesOfValues(known);
    std::memcpy(out_, bytes.data(), places - 1);
    out_ += places - 1;
  }

  std::string_view text_;
  std::byte* out_;
  Group stored_{};
  bool ended_ = false;
};

}  // namespace

std::string base64Encode(std::span<const std::byte> data) {
  std::string text((data.size() + 2) / 3 * 4, '\0');
  char* characters = text.data();
  while (data.size() >= 8) {
    encodeTwoGroups(data.data(), characters);
    data = data.subspan(6);
    characters += 8;
  }
  while (!data.empty()) {
    const auto group = data.first(std::min<std::size_t>(data.size(), 3));
    encodeGroup(group, characters);
    data = data.subspan(group.size());
    characters += 4;
  }
  return text;
}

Data base64Decode(std::string_view text) {
  Data data(text.size() / 4 * 3 + 4);
  const std::byte* const end = Decoder(text, data.data()).decode();
  data.resize(static_cast<std::size_t>(end - data.data()));
  return data;
}

}  // namespace vornix::text
