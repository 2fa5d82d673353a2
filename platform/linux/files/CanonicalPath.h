#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// The absolute path of an item without links, "." and ".." on the way. The item itself is not
// followed when it is a link, unless a slash, "." or ".." at the end asks for that. None, with
// `errno` set, when its folder cannot be reached, for an empty path and one with a zero byte; the
// item itself need not exist.
[[nodiscard]] std::optional<std::string> canonicalPathOf(std::string_view path);

}  // namespace vornix
