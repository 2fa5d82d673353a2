#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Well-formedness of UTF-8 as a machine of nine states. A step costs one look-up and one shift and
// no branch: a byte's row holds the next state for every state, six bits each, and a state is the
// number of bits by which its entry is shifted.
namespace vornix::text {

inline constexpr std::uint64_t kUtf8StateBits = 6;
inline constexpr std::uint64_t kUtf8StateMask = 63;

enum class Utf8State : std::uint64_t {
  accepting = 0 * kUtf8StateBits,
  rejecting = 1 * kUtf8StateBits,
  oneMore = 2 * kUtf8StateBits,
  twoMore = 3 * kUtf8StateBits,
  threeMore = 4 * kUtf8StateBits,
  // Leads that do not go with every second byte.
  afterE0 = 5 * kUtf8StateBits,
  afterED = 6 * kUtf8StateBits,
  afterF0 = 7 * kUtf8StateBits,
  afterF4 = 8 * kUtf8StateBits,
};

constexpr Utf8State utf8StateAfterLead(unsigned byte) {
  if (byte < 0x80) return Utf8State::accepting;
  if (byte < 0xC2 || byte > 0xF4) return Utf8State::rejecting;
  if (byte < 0xE0) return Utf8State::oneMore;
  if (byte == 0xE0) return Utf8State::afterE0;
  if (byte == 0xED) return Utf8State::afterED;
  if (byte < 0xF0) return Utf8State::twoMore;
  if (byte == 0xF0) return Utf8State::afterF0;
  return byte == 0xF4 ? Utf8State::afterF4 : Utf8State::threeMore;
}

constexpr Utf8State utf8NextState(Utf8State state, unsigned byte) {
  const auto within = [byte](unsigned first, unsigned last, Utf8State next) {
    return byte >= first && byte <= last ? next : Utf8State::rejecting;
  };
  switch (state) {
    case Utf8State::accepting:
      return utf8StateAfterLead(byte);
    case Utf8State::rejecting:
      return Utf8State::rejecting;
    case Utf8State::oneMore:
      return within(0x80, 0xBF, Utf8State::accepting);
    case Utf8State::twoMore:
      return within(0x80, 0xBF, Utf8State::oneMore);
    case Utf8State::threeMore:
      return within(0x80, 0xBF, Utf8State::twoMore);
    case Utf8State::afterE0:
      return within(0xA0, 0xBF, Utf8State::oneMore);
    case Utf8State::afterED:
      return within(0x80, 0x9F, Utf8State::oneMore);
    case Utf8State::afterF0:
      return within(0x90, 0xBF, Utf8State::twoMore);
    case Utf8State::afterF4:
      return within(0x80, 0x8F, Utf8State::twoMore);
  }
  return Utf8State::rejecting;
}

constexpr std::array<std::uint64_t, 256> utf8Rows() {
  std::array<std::uint64_t, 256> rows{};
  for (unsigned byte = 0; byte < rows.size(); ++byte) {
    for (std::uint64_t state = 0; state < 9 * kUtf8StateBits; state += kUtf8StateBits) {
      const auto next = utf8NextState(static_cast<Utf8State>(state), byte);
      rows[byte] |= static_cast<std::uint64_t>(next) << state;
    }
  }
  return rows;
}

inline constexpr auto kUtf8Rows = utf8Rows();
inline constexpr auto kUtf8Accepting = static_cast<std::uint64_t>(Utf8State::accepting);

// Only the lowest bits of the answer are the state; a next step needs no more.
inline std::uint64_t utf8Step(std::uint64_t state, char byte) {
  return kUtf8Rows[static_cast<unsigned char>(byte)] >> (state & kUtf8StateMask);
}

constexpr std::uint64_t utf8StateOf(std::uint64_t step) {
  return step & kUtf8StateMask;
}

inline constexpr std::size_t kAsciiBlock = 16;

// Whether a block of that many bytes holds ASCII only, which leaves an accepting machine as it is.
inline bool isAsciiBlock(const char* block) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  std::array<std::uint64_t, kAsciiBlock / sizeof(std::uint64_t)> words{};
  std::memcpy(words.data(), block, kAsciiBlock);
  return ((words[0] | words[1]) & highBits) == 0;
}

}  // namespace vornix::text
