#include "foundation/NSObject+VXTimeout.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "logging/GTMLogger.h"
#include "platform/base/Value.h"
#include "platform/runloop/BackgroundQueue.h"
#include "platform/runloop/GuardedCall.h"
#include "platform/runloop/NSRunLoop.h"
#include "platform/system/CallStack.h"

namespace vornix {
namespace {

// The shortest turn of the caller's loop, in seconds.
constexpr double kSlice = 0.01;

using Flag = std::atomic<bool>;

// The flag is set and the loop woken when the block has returned; both may be the last to live.
std::shared_ptr<const Flag> startInBackground(std::function<void()> block,
                                              const std::shared_ptr<NSRunLoop>& loop) {
  auto isFinished = std::make_shared<Flag>(false);
  dispatchAsyncOnBackgroundQueue([=, block = std::move(block)] {
    callReportingExceptions(block, "a block with a timeout");
    *isFinished = true;
    loop->eventWaiter().wake();
  });
  return isFinished;
}

bool turnUntil(const Flag& isFinished, double start, double timeout, NSRunLoop& loop) {
  while (!isFinished) {
    const double elapsed = loop.eventWaiter().now() - start;
    if (!(timeout >= elapsed)) return isFinished;
    (void)loop.runUntil([&] { return isFinished.load(); }, std::max(kSlice, timeout - elapsed));
  }
  return true;
}

Value callStack() {
  Array lines;
  for (auto& symbol : callStackSymbols()) lines.emplace_back(std::move(symbol));
  return lines;
}

}  // namespace

void performBlockTimeout(const std::shared_ptr<NSObject>& self, std::function<void()> block,
                         double timeout) {
  if (!self) return;
  if (!block) GTMLogger::sharedLogger()->logDebug("Block shouldn't be nil");
  const auto loop = NSRunLoop::currentRunLoop();
  const double start = loop->eventWaiter().now();
  const auto isFinished = startInBackground(std::move(block), loop);
  if (turnUntil(*isFinished, start, timeout, *loop)) return;
  GTMLogger::sharedLogger()->logDebug("Operation timed out %@", callStack());
}

}  // namespace vornix
