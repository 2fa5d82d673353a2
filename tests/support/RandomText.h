#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace vornix::tests {

// Texts drawn from a few pieces, the same ones in every run.
class RandomText {
 public:
  explicit RandomText(std::span<const std::string_view> pieces, std::uint32_t seed = 1)
      : pieces_(pieces), engine_(seed) {}

  // Up to `most` pieces.
  [[nodiscard]] std::string next(std::size_t most) {
    std::string text;
    for (std::size_t count = below(most + 1); count > 0; --count) {
      text += pieces_[below(pieces_.size())];
    }
    return text;
  }

  [[nodiscard]] std::size_t below(std::size_t limit) { return engine_() % limit; }

 private:
  std::span<const std::string_view> pieces_;
  std::mt19937 engine_;
};

}  // namespace vornix::tests
