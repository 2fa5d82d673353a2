#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace vornix::text {

// A list of lengths or offsets that takes four bytes for each of them, until one comes that needs
// more.
template <std::unsigned_integral Narrow = std::uint32_t>
class CompactLengths {
 public:
  void append(std::size_t length) {
    if (wide_.empty() && length <= std::numeric_limits<Narrow>::max()) {
      narrow_.push_back(static_cast<Narrow>(length));
    } else {
      widen();
      wide_.push_back(length);
    }
  }

  // There must be one at that index.
  void replace(std::size_t index, std::size_t length) {
    if (wide_.empty() && length <= std::numeric_limits<Narrow>::max()) {
      narrow_[index] = static_cast<Narrow>(length);
    } else {
      widen();
      wide_[index] = length;
    }
  }

  [[nodiscard]] std::size_t operator[](std::size_t index) const {
    return wide_.empty() ? narrow_[index] : wide_[index];
  }
  [[nodiscard]] std::size_t size() const { return wide_.empty() ? narrow_.size() : wide_.size(); }
  [[nodiscard]] bool isCompact() const { return wide_.empty(); }

 private:
  void widen() {
    if (!wide_.empty()) return;
    wide_.assign(narrow_.begin(), narrow_.end());
    narrow_ = {};
  }

  std::vector<Narrow> narrow_{};
  // Holds all of them as soon as it holds any.
  std::vector<std::size_t> wide_{};
};

}  // namespace vornix::text
