#pragma once

#include <cstdint>

namespace vornix {

// Fills a new, empty file with the first `size` bytes of another, leaving out what is not stored
// there. Answers 0 or the system's error number.
[[nodiscard]] int copySparseContents(int source, int copy, std::uint64_t size);

}  // namespace vornix
