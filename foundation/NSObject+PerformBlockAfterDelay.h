#pragma once

#include <functional>
#include <memory>

#include "platform/base/NSObject.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {

// Run a block on behalf of a receiver, which is retained until then. Without a receiver nothing
// happens. A missing block, and an exception that leaves one, are reported.

// After so many seconds, on the calling thread, while its run loop turns in one of the common
// modes. Also a delay of 0 waits for the loop.
void performBlockAfterDelay(const std::shared_ptr<NSObject>& self, std::function<void()> block,
                            double afterDelay);

// On the main thread, while its run loop turns in one of the modes, and never with no modes;
// `waitUntilDone` returns when it has run. Waiting on the main thread runs the block at once
// whatever the modes; not waiting queues it there, too. Any thread.
void performBlockOnMainThread(const std::shared_ptr<NSObject>& self, std::function<void()> block,
                              bool waitUntilDone, const RunLoopModes& inModes);

// At once, on the calling thread.
void fireBlockAfterDelay(const std::shared_ptr<NSObject>& self, const std::function<void()>& block);

}  // namespace vornix
