#include "foundation/NSObject+PerformBlockAfterDelay.h"

#include <utility>

#include "platform/runloop/GuardedCall.h"

namespace vornix {

void performBlockAfterDelay(const std::shared_ptr<NSObject>& self, std::function<void()> block,
                            double afterDelay) {
  if (!self) return;
  NSRunLoop::currentRunLoop()->performAfterDelay(
      [self, block = std::move(block)] { fireBlockAfterDelay(self, block); }, afterDelay,
      {NSRunLoopCommonModes});
}

void performBlockOnMainThread(const std::shared_ptr<NSObject>& self, std::function<void()> block,
                              bool waitUntilDone, const RunLoopModes& inModes) {
  if (!self) return;
  if (waitUntilDone && isMainThread()) return fireBlockAfterDelay(self, block);
  auto fire = [self, block = std::move(block)] { fireBlockAfterDelay(self, block); };
  const auto loop = NSRunLoop::mainRunLoop();
  if (waitUntilDone) {
    loop->performBlockAndWait(std::move(fire), inModes);
  } else {
    loop->performBlock(std::move(fire), inModes);
  }
}

void fireBlockAfterDelay(const std::shared_ptr<NSObject>& self,
                         const std::function<void()>& block) {
  if (self) callReportingExceptions(block, "a block performed for an object");
}

}  // namespace vornix
