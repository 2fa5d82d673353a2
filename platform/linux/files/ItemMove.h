#pragma once

#include <string>

namespace vornix {

// Gives an item another path, in this volume or another. Answers as `FileSystem::move` does.
[[nodiscard]] int moveItem(const std::string& source, const std::string& destination);

}  // namespace vornix
