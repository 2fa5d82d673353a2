#pragma once

#include <list>
#include <optional>

#include "platform/base/Mutex.h"
#include "platform/runloop/RunLoopModeSet.h"

namespace vornix {

// The blocks that wait for a loop, those of the main queue among them, in the order added. Any
// thread.
class RunLoopBlockQueue {
 public:
  struct Entry {
    NSRunLoop::Block block;
    RunLoopModeSet modes;
    bool isOfMainQueue = false;
  };

  void push(Entry entry);
  // The oldest block that may run in the mode; taken off the queue.
  [[nodiscard]] std::optional<Entry> take(const RunningMode& mode, bool mayTakeMainQueue);
  [[nodiscard]] bool hasBlock(const RunningMode& mode, bool mayTakeMainQueue) const;

 private:
  mutable Mutex mutex_;
  // Allocates nothing while it is empty, which a short run leaves it.
  std::list<Entry> entries_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
