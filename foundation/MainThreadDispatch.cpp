#include "foundation/MainThreadDispatch.h"

#include <utility>

#include "foundation/NSObject+PerformBlockAfterDelay.h"
#include "logging/GTMLogger.h"
#include "platform/base/Mutex.h"
#include "platform/runloop/DispatchGroup.h"
#include "platform/runloop/GuardedCall.h"
#include "platform/runloop/NSNotificationCenter.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {
namespace {

void runOnMainThread(const std::shared_ptr<NSObject>& sender, std::function<void()> block,
                     bool waitUntilDone) {
  if (isMainThread()) {
    callReportingExceptions(block, "a block of the main thread");
  } else {
    performBlockOnMainThread(sender, std::move(block), waitUntilDone, {NSRunLoopCommonModes});
  }
}

std::shared_ptr<DispatchGroup> enteredGroup() {
  auto group = std::make_shared<DispatchGroup>();
  group->enter();
  return group;
}

void callAndWait(const CompletingOperation& operation,
                 const std::shared_ptr<DispatchGroup>& group) {
  bool hasReturned = false;
  callReportingExceptions(
      [&] {
        operation([group] { group->leave(); });
        hasReturned = true;
      },
      "an operation that is waited for");
  if (!hasReturned) group->leave();
  group->wait();
}

// Leaves a group at the first announcement. Shared with the observer, which may be running on
// another thread when the waiting is over.
class AgentInterruption : public std::enable_shared_from_this<AgentInterruption> {
 public:
  explicit AgentInterruption(std::shared_ptr<DispatchGroup> group) : group_(std::move(group)) {}

  void observe() {
    // An announcement that comes at once waits for the token.
    const Lock lock(mutex_);
    token_ = NSNotificationCenter::defaultCenter().addObserver(
        PrivilegedAgentHasInterrupted, [self = shared_from_this()](const NSNotification&) {
          self->group_->leave();
          self->end();
        });
  }

  void end() {
    // Whoever comes second returns when the first has removed the observer.
    const Lock lock(mutex_);
    NSNotificationCenter::defaultCenter().removeObserver(std::exchange(token_, {}));
  }

 private:
  const std::shared_ptr<DispatchGroup> group_;
  Mutex mutex_;
  NSNotificationCenter::ObserverToken token_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace

void runOnMainQueueSync(const std::shared_ptr<NSObject>& aSender, std::function<void()> block) {
  if (!aSender) {
    GTMLogger::sharedLogger()->logDebug("runOnMainQueueSync: aSender could not be nil!");
  }
  runOnMainThread(aSender, std::move(block), true);
}

void runOnMainQueueAsync(const std::shared_ptr<NSObject>& aSender, std::function<void()> block) {
  if (!aSender) {
    GTMLogger::sharedLogger()->logDebug("runOnMainQueueAsync: aSender could not be nil!");
  }
  runOnMainThread(aSender, std::move(block), false);
}

void waitForCompletionOrAgentInterruption(const CompletingOperation& operation) {
  // Entered before an announcement can come.
  const auto group = enteredGroup();
  const auto interruption = std::make_shared<AgentInterruption>(group);
  interruption->observe();
  callAndWait(operation, group);
  interruption->end();
}

void waitForCompletion(const CompletingOperation& operation) {
  callAndWait(operation, enteredGroup());
}

}  // namespace vornix
