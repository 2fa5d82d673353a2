#include "foundation/NSObject+VXTimeout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/runloop/NSRunLoop.h"
#include "platform/runloop/ThreadPriority.h"
#include "tests/fakes/FakeCallStack.h"
#include "tests/fakes/FakeEventWaiter.h"
#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

// Blocks until it is released; tells when the background queue has let go of it, by when it has
// long counted as finished.
class HeldBlock {
 public:
  HeldBlock() = default;
  HeldBlock(const HeldBlock&) = delete;
  HeldBlock& operator=(const HeldBlock&) = delete;
  ~HeldBlock() { finish(); }

  [[nodiscard]] std::function<void()> block() {
    std::shared_ptr<void> whenReleased(nullptr,
                                       [state = state_](void*) { state->gone.count_down(); });
    return [state = state_, whenReleased = std::move(whenReleased)] { state->release.wait(); };
  }
  void release() {
    if (!std::exchange(isReleased_, true)) state_->release.count_down();
  }
  void finish() {
    release();
    state_->gone.wait();
  }

 private:
  struct State {
    std::latch release{1};
    std::latch gone{1};
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
  bool isReleased_ = false;
};

class PerformBlockTimeout : public testing::Test {
 protected:
  // Of the process's clock, which jumps while the loop sleeps unless it is held.
  [[nodiscard]] double now() const { return waiter_.now(); }

  fakes::ScopedSharedLogger logger_;
  tests::ScopedDiagnostics diagnostics_;
  std::shared_ptr<NSRunLoop> loop_ = NSRunLoop::mainRunLoop();
  fakes::FakeEventWaiter& waiter_ = fakes::waiterOf(*loop_);
  std::shared_ptr<NSObject> object_ = std::make_shared<NSObject>();
};

TEST_F(PerformBlockTimeout, ABlockThatFinishesInTimeEndsTheWaitRightAwayAndIsNotLogged) {
  waiter_.holdTime(true);
  const double start = now();
  std::atomic<int> calls = 0;
  performBlockTimeout(
      object_, [&] { ++calls; }, 3600);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(now(), start);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PerformBlockTimeout,
       ABlockThatTakesLongerEndsTheWaitAfterTheTimeoutAndIsLoggedWithTheCalls) {
  HeldBlock held;
  const double start = now();
  performBlockTimeout(object_, held.block(), 0.5);
  EXPECT_GE(now() - start, 0.5);
  EXPECT_LE(now() - start, 0.51 + 1e-9);
  std::string expected = "Operation timed out (\n";
  const auto symbols = fakes::fakeCallStackSymbols();
  for (const auto& symbol : symbols) {
    expected += "    \"" + symbol + (symbol == symbols.back() ? "\"\n" : "\",\n");
  }
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre(expected + ")"));
  EXPECT_THAT(logger_.messages(), SizeIs(1));
}

struct TimeoutCase {
  double timeout;
  // Seconds until it is given up.
  double waited;
};

TEST_F(PerformBlockTimeout, WaitsWhileTheElapsedTimeDoesNotExceedTheTimeout) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  // A clock that stops exactly at the timeout leaves one more turn.
  const std::vector<TimeoutCase> cases{{0, 0.01},
                                       {-0.0, 0.01},
                                       {0.00390625, 0.01},
                                       {0.0078125, 0.01},
                                       {0.015625, 0.025625},
                                       {0.25, 0.26},
                                       {0.5, 0.51},
                                       {1, 1.01},
                                       {2, 2.01},
                                       {10, 10.01},
                                       {60, 60.01},
                                       {3600, 3600.01},
                                       {86400, 86400.01},
                                       {1e6, 1e6 + 0.01},
                                       {-1, 0},
                                       {-0.001, 0},
                                       {-1e300, 0},
                                       {-std::numeric_limits<double>::denorm_min(), 0},
                                       {-kInfinity, 0},
                                       {std::numeric_limits<double>::quiet_NaN(), 0},
                                       {-std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& [timeout, waited] : cases) {
    logger_.capture().clear();
    HeldBlock held;
    const double start = now();
    performBlockTimeout(object_, held.block(), timeout);
    EXPECT_NEAR(now() - start, waited, 1e-6) << timeout;
    EXPECT_THAT(logger_.messages(), SizeIs(1)) << timeout;
    held.finish();
  }
}

TEST_F(PerformBlockTimeout, WithoutEndWaitsForTheBlock) {
  waiter_.holdTime(true);
  for (const double timeout : {std::numeric_limits<double>::infinity(), 1e300, 1e9}) {
    HeldBlock held;
    waiter_.atNextWait([&] { held.release(); });
    performBlockTimeout(object_, held.block(), timeout);
    EXPECT_THAT(logger_.messages(), IsEmpty());
  }
}

TEST_F(PerformBlockTimeout, SleepsThroughWhereTheCallersLoopHasNothingToDo) {
  HeldBlock held;
  const std::size_t before = waiter_.waits().size();
  performBlockTimeout(object_, held.block(), 100);
  // To the timeout, and the turn beyond it.
  EXPECT_EQ(waiter_.waits().size() - before, 2U);
}

TEST_F(PerformBlockTimeout, TheCallersLoopServesTimersAndBlocksOfTheDefaultModeMeanwhile) {
  HeldBlock held;
  std::vector<std::string> events;
  loop_->performAfterDelay([&] { events.emplace_back("timer"); }, 1);
  loop_->performAfterDelay([&] { events.emplace_back("panel"); }, 1, {"panel"});
  loop_->performBlock([&] { events.emplace_back("block"); });
  loop_->performAfterDelay(
      [&] {
        events.emplace_back("release");
        // From here on only the end of the block may wake the loop.
        waiter_.holdTime(true);
        held.release();
      },
      2);
  const double start = now();
  performBlockTimeout(object_, held.block(), 10);
  EXPECT_THAT(events, ElementsAre("block", "timer", "release"));
  EXPECT_EQ(now() - start, 2);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PerformBlockTimeout, ABlockThatFinishesAsTheTimeRunsOutIsNotLogged) {
  HeldBlock held;
  loop_->performAfterDelay(
      [&] {
        held.finish();
        fakes::processClock().advance(100);
      },
      1);
  performBlockTimeout(object_, held.block(), 10);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PerformBlockTimeout, TheBlockRunsInTheBackground) {
  waiter_.holdTime(true);
  std::thread::id thread;
  bool isBackground = false;
  performBlockTimeout(
      object_,
      [&] {
        thread = std::this_thread::get_id();
        isBackground = sharedThreadPriority().isBackground();
      },
      60);
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_TRUE(isBackground);
}

TEST_F(PerformBlockTimeout, ABlockThatTimedOutRunsToItsEnd) {
  std::latch release(1);
  std::promise<void> ended;
  performBlockTimeout(
      object_,
      [&] {
        release.wait();
        ended.set_value();
      },
      1);
  EXPECT_THAT(logger_.messages(), SizeIs(1));
  release.count_down();
  ended.get_future().get();
}

TEST_F(PerformBlockTimeout, ABlockThatTimedOutMayOutliveItsCallerAndItsLoop) {
  HeldBlock held;
  std::thread([&] { performBlockTimeout(object_, held.block(), 1); }).join();
  EXPECT_THAT(logger_.messages(), SizeIs(1));
  object_.reset();
  held.finish();
}

TEST_F(PerformBlockTimeout, ABlockThatNeverEndsHoldsUpNoOther) {
  HeldBlock first;
  HeldBlock second;
  performBlockTimeout(object_, first.block(), 1);
  performBlockTimeout(object_, second.block(), 1);
  EXPECT_THAT(logger_.messages(), SizeIs(2));
  waiter_.holdTime(true);
  bool hasRun = false;
  performBlockTimeout(
      object_, [&] { hasRun = true; }, 60);
  EXPECT_TRUE(hasRun);
  EXPECT_THAT(logger_.messages(), SizeIs(2));
}

TEST_F(PerformBlockTimeout, AMissingBlockIsLoggedAndCountsAsDone) {
  waiter_.holdTime(true);
  performBlockTimeout(object_, nullptr, 60);
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre("Block shouldn't be nil"));
  EXPECT_THAT(logger_.messages(), SizeIs(1));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("bad_function_call")));
}

TEST_F(PerformBlockTimeout, ABlockThatThrowsCountsAsDone) {
  waiter_.holdTime(true);
  performBlockTimeout(
      object_, [] { throw std::runtime_error("burnt"); }, 60);
  EXPECT_THAT(logger_.messages(), IsEmpty());
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("burnt")));
}

TEST_F(PerformBlockTimeout, DoesNothingWithoutAReceiver) {
  bool hasRun = false;
  const auto sentinel = std::make_shared<int>(0);
  performBlockTimeout(
      nullptr, [&, sentinel] { hasRun = true; }, 60);
  performBlockTimeout(nullptr, nullptr, 60);
  EXPECT_EQ(sentinel.use_count(), 1);
  EXPECT_FALSE(hasRun);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PerformBlockTimeout, MayBeNestedInWhatTheLoopServesMeanwhile) {
  HeldBlock outer;
  HeldBlock inner;
  loop_->performAfterDelay([&] { performBlockTimeout(object_, inner.block(), 5); }, 1);
  const double start = now();
  performBlockTimeout(object_, outer.block(), 2);
  // The inner wait ends first, and the outer one right after it.
  EXPECT_NEAR(now() - start, 6.01, 1e-6);
  EXPECT_THAT(logger_.messages(), SizeIs(2));
}

TEST_F(PerformBlockTimeout, ManyThreadsMayWaitForBlocksAtTheSameTime) {
  constexpr int kThreads = 16;
  constexpr int kBlocks = 50;
  std::atomic<int> calls = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&] {
      fakes::waiterOf(*NSRunLoop::currentRunLoop()).holdTime(true);
      for (int count = 0; count < kBlocks; ++count) {
        performBlockTimeout(
            object_, [&] { ++calls; }, 60);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(calls, kThreads * kBlocks);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

}  // namespace
}  // namespace vornix
