#pragma once

#include <string>

namespace vornix::contract {

// Everything about an item and what is below it that a move has to keep, in lines that compare:
// kinds, permissions, owners, times, contents, links, extended attributes, and which names are
// names of one file. Empty for what does not exist.
[[nodiscard]] std::string textOfTree(const std::string& path);

}  // namespace vornix::contract
