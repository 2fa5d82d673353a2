#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vornix::desktop {

// The contents of a regular file. None, with `errno` set, when it cannot be read, is anything else
// (a pipe would block) or holds more than `limit` bytes (EFBIG).
[[nodiscard]] std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit);

}  // namespace vornix::desktop
