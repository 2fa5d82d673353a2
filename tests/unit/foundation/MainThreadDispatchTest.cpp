#include "foundation/MainThreadDispatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeEventWaiter.h"
#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

using Run = void (*)(const std::shared_ptr<NSObject>&, std::function<void()>);

struct Variant {
  std::string name;
  Run run;
  std::string complaint;
};

class RunOnMainQueue : public testing::TestWithParam<Variant> {
 protected:
  void run(const std::shared_ptr<NSObject>& sender, std::function<void()> block) const {
    GetParam().run(sender, std::move(block));
  }
  // Runs that on another thread while the main thread turns its loop.
  void onAnotherThread(const std::function<void()>& work) const {
    fakes::waiterOf(*loop_).holdTime(true);
    std::atomic<bool> isOver = false;
    std::thread other([&] {
      work();
      isOver = true;
      loop_->eventWaiter().wake();
    });
    EXPECT_TRUE(loop_->runUntil([&] { return isOver.load(); }, 60));
    other.join();
    fakes::waiterOf(*loop_).holdTime(false);
  }
  bool turnUntil(const bool& done) const {
    return loop_->runUntil([&] { return done; }, 1);
  }

  fakes::ScopedSharedLogger logger_;
  tests::ScopedDiagnostics diagnostics_;
  std::shared_ptr<NSRunLoop> loop_ = NSRunLoop::mainRunLoop();
  std::shared_ptr<NSObject> sender_ = std::make_shared<NSObject>();
};

TEST_P(RunOnMainQueue, OnTheMainThreadRunsTheBlockBeforeItReturns) {
  bool hasRun = false;
  run(sender_, [&] { hasRun = true; });
  EXPECT_TRUE(hasRun);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_P(RunOnMainQueue, FromAnotherThreadRunsTheBlockOnTheMainThread) {
  bool hasRun = false;
  onAnotherThread([&] {
    run(sender_, [&] {
      EXPECT_TRUE(isMainThread());
      hasRun = true;
    });
  });
  EXPECT_TRUE(turnUntil(hasRun));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_P(RunOnMainQueue, WithoutASenderOnTheMainThreadSaysSoAndRunsTheBlock) {
  bool hasRun = false;
  run(nullptr, [&] { hasRun = true; });
  EXPECT_TRUE(hasRun);
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre(GetParam().complaint));
}

TEST_P(RunOnMainQueue, WithoutASenderOnAnotherThreadSaysSoAndDoesNotRunTheBlock) {
  bool hasRun = false;
  onAnotherThread([&] { run(nullptr, [&] { hasRun = true; }); });
  EXPECT_FALSE(turnUntil(hasRun));
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre(GetParam().complaint));
}

TEST_P(RunOnMainQueue, WaitsForACommonMode) {
  bool hasRun = false;
  std::thread other([&] { run(sender_, [&] { hasRun = true; }); });
  EXPECT_FALSE(loop_->runUntil([&] { return hasRun; }, 1, "panel"));
  loop_->addCommonMode("panel");
  fakes::waiterOf(*loop_).holdTime(true);
  EXPECT_TRUE(loop_->runUntil([&] { return hasRun; }, 60, "panel"));
  other.join();
}

TEST_P(RunOnMainQueue, ReportsWhatIsWrongWithTheBlock) {
  run(sender_, nullptr);
  run(sender_, [] { throw std::runtime_error("burnt"); });
  onAnotherThread([&] { run(sender_, nullptr); });
  onAnotherThread([&] { run(sender_, [] { throw std::runtime_error("burnt"); }); });
  bool isOver = false;
  loop_->performBlock([&] { isOver = true; });
  EXPECT_TRUE(turnUntil(isOver));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("bad_function_call"), EndsWith("burnt"),
                                                EndsWith("bad_function_call"), EndsWith("burnt")));
}

TEST_P(RunOnMainQueue, RunsTheBlocksOfOneThreadInTheirOrder) {
  std::vector<int> order;
  onAnotherThread([&] {
    for (int number = 0; number < 100; ++number) {
      run(sender_, [&, number] { order.push_back(number); });
    }
  });
  bool isOver = false;
  loop_->performBlock([&] { isOver = true; });
  EXPECT_TRUE(turnUntil(isOver));
  ASSERT_EQ(order.size(), 100U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_P(RunOnMainQueue, ABlockMayRunAnotherFromTheMainThread) {
  std::vector<std::string> events;
  onAnotherThread([&] {
    run(sender_, [&] {
      events.emplace_back("before");
      run(sender_, [&] { events.emplace_back("inside"); });
      events.emplace_back("after");
    });
  });
  bool isOver = false;
  loop_->performBlock([&] { isOver = true; });
  EXPECT_TRUE(turnUntil(isOver));
  EXPECT_THAT(events, ElementsAre("before", "inside", "after"));
}

INSTANTIATE_TEST_SUITE_P(Both, RunOnMainQueue,
                         testing::Values(Variant{"Sync", &runOnMainQueueSync,
                                                 "runOnMainQueueSync: aSender could not be nil!"},
                                         Variant{"Async", &runOnMainQueueAsync,
                                                 "runOnMainQueueAsync: aSender could not be nil!"}),
                         [](const auto& test) { return test.param.name; });

TEST(RunOnMainQueueSync, BlocksAnotherThreadUntilTheMainThreadHasRunTheBlock) {
  const auto loop = NSRunLoop::mainRunLoop();
  fakes::waiterOf(*loop).holdTime(true);
  std::atomic<bool> isOver = false;
  std::thread other([&] {
    bool hasRun = false;
    runOnMainQueueSync(std::make_shared<NSObject>(), [&] { hasRun = true; });
    EXPECT_TRUE(hasRun);
    isOver = true;
    loop->eventWaiter().wake();
  });
  EXPECT_TRUE(loop->runUntil([&] { return isOver.load(); }, 60));
  other.join();
}

TEST(RunOnMainQueueAsync, DoesNotBlockAnotherThread) {
  bool hasRun = false;
  const auto sender = std::make_shared<NSObject>();
  std::thread([&] { runOnMainQueueAsync(sender, [&] { hasRun = true; }); }).join();
  EXPECT_FALSE(hasRun);
  EXPECT_TRUE(NSRunLoop::mainRunLoop()->runUntil([&] { return hasRun; }, 1));
}

}  // namespace
}  // namespace vornix
