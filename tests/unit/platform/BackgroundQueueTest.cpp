#include "platform/runloop/BackgroundQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <stdexcept>
#include <thread>

#include "platform/runloop/ThreadPriority.h"
#include "tests/support/Journal.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

// Returns when a block added now has run.
void awaitTurn() {
  std::promise<void> turn;
  dispatchAsyncOnBackgroundQueue([&] { turn.set_value(); });
  turn.get_future().get();
}

TEST(BackgroundQueue, RunsABlockOnAnotherThreadOfTheLowestPriority) {
  std::promise<std::pair<std::thread::id, bool>> ran;
  dispatchAsyncOnBackgroundQueue([&] {
    ran.set_value({std::this_thread::get_id(), sharedThreadPriority().isBackground()});
  });
  const auto [thread, isBackground] = ran.get_future().get();
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_TRUE(isBackground);
  EXPECT_FALSE(sharedThreadPriority().isBackground());
}

TEST(BackgroundQueue, BlocksThatNeverReturnHoldUpNoOtherBelowTheBound) {
  std::latch release(1);
  std::latch blocked(kMostBackgroundBlocks - 1);
  std::latch over(kMostBackgroundBlocks - 1);
  for (int count = 0; count < kMostBackgroundBlocks - 1; ++count) {
    dispatchAsyncOnBackgroundQueue([&] {
      blocked.count_down();
      release.wait();
      over.count_down();
    });
  }
  blocked.wait();
  awaitTurn();
  awaitTurn();
  release.count_down();
  over.wait();
}

TEST(BackgroundQueue, ABlockBeyondTheBoundWaitsForAnotherToReturn) {
  std::latch release(1);
  std::latch blocked(kMostBackgroundBlocks);
  std::latch over(kMostBackgroundBlocks);
  std::atomic<int> returned = 0;
  for (int count = 0; count < kMostBackgroundBlocks; ++count) {
    dispatchAsyncOnBackgroundQueue([&] {
      blocked.count_down();
      release.wait();
      ++returned;
      over.count_down();
    });
  }
  blocked.wait();
  std::promise<int> seen;
  dispatchAsyncOnBackgroundQueue([&] { seen.set_value(returned); });
  auto future = seen.get_future();
  EXPECT_EQ(future.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  release.count_down();
  EXPECT_GE(future.get(), 1);
  over.wait();
}

TEST(BackgroundQueue, ReportsWhatIsWrongWithABlockAndGoesOn) {
  const tests::ScopedDiagnostics diagnostics;
  dispatchAsyncOnBackgroundQueue(nullptr);
  dispatchAsyncOnBackgroundQueue([] { throw std::runtime_error("burnt"); });
  dispatchAsyncOnBackgroundQueue([] { throw 5; });
  while (diagnostics.lines().size() < 3) awaitTurn();
  EXPECT_THAT(diagnostics.lines(),
              testing::UnorderedElementsAre(testing::EndsWith("bad_function_call"),
                                            testing::EndsWith("burnt"),
                                            testing::HasSubstr("unknown type")));
}

TEST(BackgroundQueue, TakesBlocksFromManyThreads) {
  constexpr int kThreads = 8;
  constexpr int kBlocks = 200;
  std::latch over(kThreads * kBlocks);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&] {
      for (int count = 0; count < kBlocks; ++count) {
        dispatchAsyncOnBackgroundQueue([&] { over.count_down(); });
      }
    });
  }
  for (auto& thread : threads) thread.join();
  over.wait();
}

}  // namespace
}  // namespace vornix
