#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vornix {

// A fast stream of bytes that nobody can tell in advance: xoshiro256++ with a seed from the kernel.
// Fit to hide what stood on a disk and to make names, not for keys.
class RandomBytes {
 public:
  // None, with `errno` set, where the kernel has no seed.
  [[nodiscard]] static std::optional<RandomBytes> seeded();

  void fill(std::span<std::byte> bytes);
  // Letters and digits.
  [[nodiscard]] std::string name(std::size_t length);

 private:
  using State = std::array<std::uint64_t, 4>;

  RandomBytes() = default;
  [[nodiscard]] static std::uint64_t next(State& state);

  State state_{};
};

}  // namespace vornix
