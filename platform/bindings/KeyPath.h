#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace vornix {

inline constexpr char kKeyPathSeparator = '.';

// The first key of a path, and what follows its separator; none where there is none.
[[nodiscard]] constexpr std::pair<std::string_view, std::optional<std::string_view>> firstKey(
    std::string_view keyPath) {
  const auto end = keyPath.find(kKeyPathSeparator);
  if (end == std::string_view::npos) return {keyPath, std::nullopt};
  return {keyPath.substr(0, end), keyPath.substr(end + 1)};
}

}  // namespace vornix
