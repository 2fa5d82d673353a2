#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vornix::fuzz {

// Input for operations on two texts: what stands in front of the first line feed, and the rest.
struct Halves {
  std::string_view first;
  std::string_view second;
};

inline Halves halvesOf(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return {text, {}};
  return {text.substr(0, end), text.substr(end + 1)};
}

}  // namespace vornix::fuzz
