#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// Run the block on the main thread: at once when called there, else through the sender's
// `performBlockOnMainThread` in the common modes, the first waiting until it has run. Without a
// sender, which is logged, a block from another thread is not run. A missing block, and an
// exception that leaves one, are reported. Any thread.
void runOnMainQueueSync(const std::shared_ptr<NSObject>& aSender, std::function<void()> block);
void runOnMainQueueAsync(const std::shared_ptr<NSObject>& aSender, std::function<void()> block);

// Announced to the default notification centre when a privileged agent process was interrupted.
inline constexpr std::string_view PrivilegedAgentHasInterrupted = "PrivilegedAgentHasInterrupted";

// Starts something that is over when it calls `completion`, on whatever thread, and however often.
using CompletingOperation = std::function<void(std::function<void()> completion)>;

// Call the operation and block the calling thread, without limit, until it has called its
// completion; the first also until an interruption is announced. A completion or an announcement
// that comes later has no effect. Not on the thread on which the completion will be called. A
// missing operation, or one that throws, which is reported, counts as complete. Any thread.
void waitForCompletionOrAgentInterruption(const CompletingOperation& operation);
void waitForCompletion(const CompletingOperation& operation);

}  // namespace vornix
