#pragma once

#include <string>

namespace vornix::contract {

// Folders in each other, each with a file, far deeper than a path can name.
void makeDeepTree(const std::string& path, int depth);
// How many of the folders are there, each with its file.
[[nodiscard]] int depthOfTree(const std::string& path);

}  // namespace vornix::contract
