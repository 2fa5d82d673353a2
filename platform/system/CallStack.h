#pragma once

#include <string>
#include <vector>

namespace vornix {

// The calls under way on this thread, the innermost first, from the caller of this function on: one
// line each with its number, the program or library, the address, and the function with the offset
// into it. Where the function's name is not known, the place of its program or library in memory
// stands for it. For the person who reads a log; slow.
[[nodiscard]] std::vector<std::string> callStackSymbols();

}  // namespace vornix
