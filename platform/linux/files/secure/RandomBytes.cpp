#include "platform/linux/files/secure/RandomBytes.h"

#include <sys/random.h>

#include <bit>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace vornix {
namespace {

constexpr std::string_view kLettersAndDigits =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

}  // namespace

std::optional<RandomBytes> RandomBytes::seeded() {
  RandomBytes random;
  // As much as the kernel gives in one piece, whatever signals come.
  static_assert(sizeof random.state_ <= 256);
  while (getrandom(&random.state_, sizeof random.state_, 0) < 0) {
    if (errno != EINTR) return std::nullopt;
  }
  return random;
}

std::uint64_t RandomBytes::next(State& state) {
  auto& [a, b, c, d] = state;
  const std::uint64_t result = std::rotl(a + d, 23) + a;
  const std::uint64_t shifted = b << 17U;
  c ^= a;
  d ^= b;
  b ^= c;
  a ^= d;
  c ^= shifted;
  d = std::rotl(d, 45);
  return result;
}

void RandomBytes::fill(std::span<std::byte> bytes) {
  // A copy that stays in registers: bytes might else be part of it, for all the compiler knows.
  State state = state_;
  for (; bytes.size() >= sizeof(std::uint64_t); bytes = bytes.subspan(sizeof(std::uint64_t))) {
    const std::uint64_t value = next(state);
    std::memcpy(bytes.data(), &value, sizeof value);
  }
  if (!bytes.empty()) {
    const std::uint64_t value = next(state);
    std::memcpy(bytes.data(), &value, bytes.size());
  }
  state_ = state;
}

std::string RandomBytes::name(std::size_t length) {
  std::string name;
  while (name.size() < length) {
    std::byte byte{};
    fill({&byte, 1});
    // All but the last few values, so that no character is likelier than another.
    const auto value = std::to_integer<std::size_t>(byte);
    if (value < 256 - 256 % kLettersAndDigits.size())
      name += kLettersAndDigits[value % kLettersAndDigits.size()];
  }
  return name;
}

}  // namespace vornix
