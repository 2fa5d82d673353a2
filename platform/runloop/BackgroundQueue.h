#pragma once

#include <functional>

namespace vornix {

// So many blocks may run at the same time.
inline constexpr int kMostBackgroundBlocks = 64;

// Runs the block on a thread of the lowest priority. Blocks start in the order added, each at once:
// one that never returns holds up no other until `kMostBackgroundBlocks` run. Threads are kept for
// later blocks. A missing block, and an exception that leaves one, become diagnostics. Any thread.
void dispatchAsyncOnBackgroundQueue(std::function<void()> block);

}  // namespace vornix
