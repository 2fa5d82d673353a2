#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vornix::tests {

[[nodiscard]] inline std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  while (times-- > 0) text += piece;
  return text;
}

}  // namespace vornix::tests
