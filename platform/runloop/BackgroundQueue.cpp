#include "platform/runloop/BackgroundQueue.h"

#include <utility>

#include "platform/runloop/NSOperationQueue.h"
#include "platform/runloop/ThreadPriority.h"

namespace vornix {
namespace {

void lowerPriorityOnce() {
  thread_local bool isLowered = false;
  if (!std::exchange(isLowered, true)) sharedThreadPriority().lowerToBackground();
}

}  // namespace

void dispatchAsyncOnBackgroundQueue(std::function<void()> block) {
  static auto& queue = *new NSOperationQueue(kMostBackgroundBlocks);
  queue.addOperation([block = std::move(block)] {
    lowerPriorityOnce();
    block();
  });
}

}  // namespace vornix
