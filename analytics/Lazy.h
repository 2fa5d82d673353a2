#pragma once

#include <functional>
#include <optional>
#include <utility>

namespace vornix {

// A value that is computed when it is first asked for, since most runs never ask. One thread.
template <typename T>
class Lazy {
 public:
  explicit Lazy(std::function<T()> compute) : compute_(std::move(compute)) {}

  [[nodiscard]] T& get() {
    if (!value_) value_ = compute_();
    return *value_;
  }
  // From now on this; none computes again when next asked.
  void set(std::optional<T> value) { value_ = std::move(value); }

 private:
  std::function<T()> compute_;
  std::optional<T> value_;
};

}  // namespace vornix
