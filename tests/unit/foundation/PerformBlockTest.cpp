#include "foundation/NSObject+PerformBlockAfterDelay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/fakes/FakeEventWaiter.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class PerformBlock : public testing::Test {
 protected:
  std::function<void()> note(std::string event) {
    return [this, event = std::move(event)] { events_.push_back(event); };
  }
  // True when that many events are there after that many seconds of the loop at the most.
  bool turn(std::size_t events, double seconds = 1, RunLoopMode mode = NSDefaultRunLoopMode) {
    return loop_->runUntil([&] { return events_.size() >= events; }, seconds, mode);
  }
  double now() const { return loop_->eventWaiter().now(); }

  tests::ScopedDiagnostics diagnostics_;
  std::shared_ptr<NSRunLoop> loop_ = NSRunLoop::mainRunLoop();
  std::shared_ptr<NSObject> object_ = std::make_shared<NSObject>();
  std::vector<std::string> events_;
};

using PerformBlockAfterDelay = PerformBlock;

struct DelayCase {
  double delay;
  // Seconds until the block runs.
  double waited;
};

TEST_F(PerformBlockAfterDelay, RunsTheBlockWhenTheDelayHasPassedAndNotBefore) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::vector<DelayCase> cases{
      {0, 0},           {-0.0, 0},       {0.25, 0.25},
      {0.5, 0.5},       {1, 1},          {1.5, 1.5},
      {2, 2},           {10, 10},        {60, 60},
      {0.125, 0.125},   {3600, 3600},    {86400, 86400},
      {1e6, 1e6},       {-1, 0},         {-0.5, 0},
      {-1e300, 0},      {-kInfinity, 0}, {std::numeric_limits<double>::quiet_NaN(), 0},
      {0.0625, 0.0625}, {7.75, 7.75},    {30, 30}};
  for (const auto& [delay, waited] : cases) {
    events_.clear();
    const double start = now();
    performBlockAfterDelay(object_, note("ran"), delay);
    EXPECT_THAT(events_, IsEmpty()) << delay;
    EXPECT_TRUE(turn(1, 1e9)) << delay;
    EXPECT_EQ(now() - start, waited) << delay;
  }
}

TEST_F(PerformBlockAfterDelay, ADelayWithoutEndNeverRunsTheBlock) {
  performBlockAfterDelay(object_, note("ran"), std::numeric_limits<double>::infinity());
  EXPECT_FALSE(turn(1, 1e6));
}

TEST_F(PerformBlockAfterDelay, RunsInTheCommonModesOnly) {
  performBlockAfterDelay(object_, note("ran"), 0);
  EXPECT_FALSE(turn(1, 1, "panel"));
  loop_->addCommonMode("panel");
  EXPECT_TRUE(turn(1, 1, "panel"));
}

TEST_F(PerformBlockAfterDelay, RunsBlocksByDateAndThoseOfOneDateInOrder) {
  performBlockAfterDelay(object_, note("late"), 2);
  performBlockAfterDelay(object_, note("first"), 1);
  performBlockAfterDelay(object_, note("second"), 1);
  EXPECT_TRUE(turn(3, 10));
  EXPECT_THAT(events_, ElementsAre("first", "second", "late"));
}

TEST_F(PerformBlockAfterDelay, RunsOnTheThreadThatCalled) {
  std::thread([&] {
    const auto here = std::this_thread::get_id();
    bool hasRun = false;
    performBlockAfterDelay(
        object_,
        [&] {
          EXPECT_EQ(std::this_thread::get_id(), here);
          hasRun = true;
        },
        1);
    EXPECT_TRUE(NSRunLoop::currentRunLoop()->runUntil([&] { return hasRun; }, 10));
  }).join();
}

TEST_F(PerformBlockAfterDelay, DoesNotRunWhereTheThreadsLoopNeverTurns) {
  std::thread([&] { performBlockAfterDelay(object_, note("ran"), 0); }).join();
  EXPECT_FALSE(turn(1));
}

TEST_F(PerformBlockAfterDelay, RetainsTheReceiverUntilTheBlockHasRun) {
  const std::weak_ptr<NSObject> watched = object_;
  performBlockAfterDelay(object_, note("ran"), 1);
  object_.reset();
  EXPECT_FALSE(watched.expired());
  EXPECT_TRUE(turn(1, 10));
  EXPECT_TRUE(watched.expired());
}

TEST_F(PerformBlockAfterDelay, DoesNothingWithoutAReceiver) {
  performBlockAfterDelay(nullptr, note("ran"), 0);
  EXPECT_FALSE(turn(1));
}

TEST_F(PerformBlockAfterDelay, ReportsAMissingBlockWhenItsTimeHasCome) {
  performBlockAfterDelay(object_, nullptr, 1);
  EXPECT_THAT(diagnostics_.lines(), IsEmpty());
  EXPECT_FALSE(turn(1, 2));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("bad_function_call")));
}

TEST_F(PerformBlockAfterDelay, ABlockMayDelayAnother) {
  performBlockAfterDelay(
      object_, [&] { performBlockAfterDelay(object_, note("inner"), 1); }, 1);
  const double start = now();
  EXPECT_TRUE(turn(1, 10));
  EXPECT_EQ(now() - start, 2);
}

using PerformBlockOnMainThread = PerformBlock;

TEST_F(PerformBlockOnMainThread, WithoutWaitingDoesNotRunTheBlockBeforeItReturnsOnTheMainThread) {
  performBlockOnMainThread(object_, note("ran"), false, {NSRunLoopCommonModes});
  EXPECT_THAT(events_, IsEmpty());
  EXPECT_TRUE(turn(1));
}

TEST_F(PerformBlockOnMainThread, WaitingRunsTheBlockAtOnceOnTheMainThread) {
  performBlockOnMainThread(object_, note("ran"), true, {NSRunLoopCommonModes});
  EXPECT_THAT(events_, ElementsAre("ran"));
}

TEST_F(PerformBlockOnMainThread, WithoutWaitingKeepsTheOrderAcrossThreads) {
  std::thread([&] {
    for (const std::string event : {"first", "second", "third"}) {
      performBlockOnMainThread(object_, note(event), false, {NSRunLoopCommonModes});
    }
  }).join();
  performBlockOnMainThread(object_, note("fourth"), false, {NSRunLoopCommonModes});
  EXPECT_TRUE(turn(4));
  EXPECT_THAT(events_, ElementsAre("first", "second", "third", "fourth"));
}

TEST_F(PerformBlockOnMainThread, WaitingOnAnotherThreadReturnsWhenTheMainThreadHasRunTheBlock) {
  fakes::waiterOf(*loop_).holdTime(true);
  std::atomic<bool> isOver = false;
  std::thread other([&] {
    bool ranOnMain = false;
    performBlockOnMainThread(object_, [&] { ranOnMain = isMainThread(); }, true,
                             {NSRunLoopCommonModes});
    EXPECT_TRUE(ranOnMain);
    isOver = true;
    loop_->eventWaiter().wake();
  });
  EXPECT_TRUE(loop_->runUntil([&] { return isOver.load(); }, 60));
  other.join();
}

struct ModeCase {
  RunLoopModes modes;
  RunLoopMode runs;
  bool isServed;
};

TEST_F(PerformBlockOnMainThread, RunsInTheModesGivenOnly) {
  loop_->addCommonMode("shared");
  const std::vector<ModeCase> cases{{{NSRunLoopCommonModes}, NSDefaultRunLoopMode, true},
                                    {{NSRunLoopCommonModes}, "shared", true},
                                    {{NSRunLoopCommonModes}, "panel", false},
                                    {{NSRunLoopCommonModes}, "", false},
                                    {{NSDefaultRunLoopMode}, NSDefaultRunLoopMode, true},
                                    {{NSDefaultRunLoopMode}, "shared", false},
                                    {{NSDefaultRunLoopMode}, "panel", false},
                                    {{"panel"}, "panel", true},
                                    {{"panel"}, NSDefaultRunLoopMode, false},
                                    {{"panel"}, "Panel", false},
                                    {{"panel"}, "panel ", false},
                                    {{"shared"}, "shared", true},
                                    {{"shared"}, NSDefaultRunLoopMode, false},
                                    {{"panel", NSDefaultRunLoopMode}, "panel", true},
                                    {{"panel", NSDefaultRunLoopMode}, NSDefaultRunLoopMode, true},
                                    {{"panel", NSDefaultRunLoopMode}, "shared", false},
                                    {{"panel", NSRunLoopCommonModes}, "shared", true},
                                    {{"panel", "panel"}, "panel", true},
                                    {{""}, "", true},
                                    {{""}, NSDefaultRunLoopMode, false},
                                    {{"\xF0\x9F\x98\x80"}, "\xF0\x9F\x98\x80", true},
                                    {{"e\xCC\x81"}, "\xC3\xA9", false},
                                    {{}, NSDefaultRunLoopMode, false},
                                    {{}, "", false}};
  for (std::size_t index = 0; index < cases.size(); ++index) {
    const auto& [modes, runs, isServed] = cases[index];
    events_.clear();
    auto sentinel = std::make_shared<int>(0);
    performBlockOnMainThread(
        object_, [&, sentinel] { events_.emplace_back("ran"); }, false, modes);
    EXPECT_EQ(turn(1, 1, runs), isServed) << index;
    if (!modes.empty() && !isServed) {
      // It is only waiting for one of its modes.
      EXPECT_EQ(sentinel.use_count(), 2) << index;
      for (const auto mode : modes) {
        (void)turn(1, 1, mode == NSRunLoopCommonModes ? NSDefaultRunLoopMode : mode);
      }
      EXPECT_EQ(events_.size(), 1U) << index;
    }
    EXPECT_EQ(sentinel.use_count(), 1) << index;
  }
}

TEST_F(PerformBlockOnMainThread, WaitingOnTheMainThreadAsksForNoMode) {
  performBlockOnMainThread(object_, note("no modes"), true, {});
  performBlockOnMainThread(object_, note("another mode"), true, {"panel"});
  EXPECT_THAT(events_, ElementsAre("no modes", "another mode"));
}

TEST_F(PerformBlockOnMainThread, WaitingForNoModeOnAnotherThreadReturnsWithoutRunningTheBlock) {
  std::thread([&] { performBlockOnMainThread(object_, note("ran"), true, {}); }).join();
  EXPECT_FALSE(turn(1));
}

TEST_F(PerformBlockOnMainThread, RetainsTheReceiverUntilTheBlockHasRun) {
  const std::weak_ptr<NSObject> watched = object_;
  performBlockOnMainThread(object_, note("ran"), false, {NSRunLoopCommonModes});
  object_.reset();
  EXPECT_FALSE(watched.expired());
  EXPECT_TRUE(turn(1));
  EXPECT_TRUE(watched.expired());
}

TEST_F(PerformBlockOnMainThread, DoesNothingWithoutAReceiver) {
  performBlockOnMainThread(nullptr, note("ran"), true, {NSRunLoopCommonModes});
  performBlockOnMainThread(nullptr, note("ran"), false, {NSRunLoopCommonModes});
  std::thread([&] {
    performBlockOnMainThread(nullptr, note("ran"), true, {NSRunLoopCommonModes});
  }).join();
  EXPECT_FALSE(turn(1));
}

TEST_F(PerformBlockOnMainThread, ReportsWhatIsWrongWithTheBlock) {
  for (const bool waitUntilDone : {true, false}) {
    performBlockOnMainThread(object_, nullptr, waitUntilDone, {NSRunLoopCommonModes});
    performBlockOnMainThread(object_, [] { throw std::runtime_error("burnt"); }, waitUntilDone,
                             {NSRunLoopCommonModes});
  }
  performBlockOnMainThread(object_, note("after"), false, {NSRunLoopCommonModes});
  EXPECT_TRUE(turn(1));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("bad_function_call"), EndsWith("burnt"),
                                                EndsWith("bad_function_call"), EndsWith("burnt")));
}

TEST_F(PerformBlock, FireRunsTheBlockAtOnce) {
  fireBlockAfterDelay(object_, note("ran"));
  fireBlockAfterDelay(nullptr, note("no receiver"));
  EXPECT_THAT(events_, ElementsAre("ran"));
  fireBlockAfterDelay(object_, nullptr);
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("bad_function_call")));
}

}  // namespace
}  // namespace vornix
