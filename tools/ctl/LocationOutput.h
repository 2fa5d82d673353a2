#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vornix::tools {

// One place of the catalogue.
struct Location {
  std::string_view name;
  // None where this machine has no such place.
  std::optional<std::string> path{};
  bool exists = false;
};

// One line each under a heading. What cannot be shown in a line is "\x" and two hexadecimal digits,
// a backslash two of them; "-" stands for no path.
[[nodiscard]] std::string locationTable(std::span<const Location> locations);

// An array of objects with "name", "path" (a string or null) and "exists"; see `jsonPath`.
[[nodiscard]] std::string locationsAsJson(std::span<const Location> locations);

}  // namespace vornix::tools
