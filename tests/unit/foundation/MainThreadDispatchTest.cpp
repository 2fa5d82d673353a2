#include "foundation/MainThreadDispatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/runloop/NSNotificationCenter.h"
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

using Wait = void (*)(const CompletingOperation&);

void announceInterruption() {
  NSNotificationCenter::defaultCenter().postNotification(
      {.name = std::string(PrivilegedAgentHasInterrupted), .object = nullptr, .userInfo = {}});
}

bool isObserved() {
  return NSNotificationCenter::defaultCenter().hasObserver("PrivilegedAgentHasInterrupted");
}

class WaitForCompletion : public testing::TestWithParam<std::pair<std::string, Wait>> {
 protected:
  static void wait(const CompletingOperation& operation) { GetParam().second(operation); }

  tests::ScopedDiagnostics diagnostics_;
};

TEST_P(WaitForCompletion, ReturnsWhenTheOperationHasCompletedOnTheSpot) {
  int calls = 0;
  wait([&](const auto& completion) {
    ++calls;
    completion();
  });
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(isObserved());
}

TEST_P(WaitForCompletion, ReturnsWhenTheOperationHasCompletedOnAnotherThread) {
  std::atomic<bool> isComplete = false;
  std::thread other;
  wait([&](auto completion) {
    other = std::thread([&, completion = std::move(completion)] {
      isComplete = true;
      completion();
    });
  });
  EXPECT_TRUE(isComplete);
  EXPECT_FALSE(isObserved());
  other.join();
}

TEST_P(WaitForCompletion, ACompletionThatIsCalledAgainHasNoEffect) {
  std::function<void()> kept;
  wait([&](auto completion) {
    completion();
    completion();
    kept = std::move(completion);
  });
  kept();
  std::thread([&] { kept(); }).join();
  wait([](const auto& completion) { completion(); });
}

TEST_P(WaitForCompletion, AnOperationThatThrowsCountsAsComplete) {
  wait([](const auto&) { throw std::runtime_error("burnt"); });
  wait([](const auto& completion) {
    completion();
    throw std::runtime_error("burnt later");
  });
  wait(nullptr);
  EXPECT_THAT(diagnostics_.lines(), ElementsAre(EndsWith("burnt"), EndsWith("burnt later"),
                                                EndsWith("bad_function_call")));
  EXPECT_FALSE(isObserved());
}

TEST_P(WaitForCompletion, MayBeNested) {
  bool innerIsOver = false;
  wait([&](const auto& completion) {
    wait([](const auto& inner) { inner(); });
    innerIsOver = true;
    completion();
  });
  EXPECT_TRUE(innerIsOver);
  EXPECT_FALSE(isObserved());
}

TEST_P(WaitForCompletion, ManyThreadsMayWaitAtTheSameTime) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 32; ++thread) {
    threads.emplace_back([] {
      for (int count = 0; count < 20; ++count) {
        std::thread other;
        wait([&](auto completion) { other = std::thread(std::move(completion)); });
        other.join();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_FALSE(isObserved());
}

INSTANTIATE_TEST_SUITE_P(Both, WaitForCompletion,
                         testing::Values(std::pair("OrAgentInterruption",
                                                   &waitForCompletionOrAgentInterruption),
                                         std::pair("Alone", &waitForCompletion)),
                         [](const auto& test) { return test.param.first; });

TEST(WaitForCompletionAlone, TakesNoNoticeOfAnInterruption) {
  std::atomic<bool> isComplete = false;
  std::thread other;
  waitForCompletion([&](auto completion) {
    EXPECT_FALSE(isObserved());
    other = std::thread([&, completion = std::move(completion)] {
      announceInterruption();
      isComplete = true;
      completion();
    });
  });
  EXPECT_TRUE(isComplete);
  other.join();
}

TEST(WaitForAgentInterruption, AnInterruptionWhileItWaitsMakesItReturnAndEndsTheObserver) {
  std::thread other;
  waitForCompletionOrAgentInterruption([&](const auto&) {
    EXPECT_TRUE(isObserved());
    other = std::thread([] { announceInterruption(); });
  });
  EXPECT_FALSE(isObserved());
  other.join();
}

TEST(WaitForAgentInterruption, AnInterruptionFromInsideTheOperationCountsToo) {
  waitForCompletionOrAgentInterruption([](const auto&) { announceInterruption(); });
  EXPECT_FALSE(isObserved());
}

TEST(WaitForAgentInterruption, TheInterruptionOfAnyObjectCounts) {
  waitForCompletionOrAgentInterruption([](const auto&) {
    NSNotificationCenter::defaultCenter().postNotification({.name = "PrivilegedAgentHasInterrupted",
                                                            .object = std::make_shared<NSObject>(),
                                                            .userInfo = {{"reason", "restart"}}});
  });
  EXPECT_FALSE(isObserved());
}

TEST(WaitForAgentInterruption, OtherAnnouncementsDoNotCount) {
  std::atomic<bool> isComplete = false;
  std::thread other;
  waitForCompletionOrAgentInterruption([&](auto completion) {
    other = std::thread([&, completion = std::move(completion)] {
      for (const std::string name :
           {"privilegedAgentHasInterrupted", "PrivilegedAgentHasInterrupted ",
            "PrivilegedAgentHasInterrupte", ""}) {
        NSNotificationCenter::defaultCenter().postNotification(
            {.name = name, .object = nullptr, .userInfo = {}});
      }
      isComplete = true;
      completion();
    });
  });
  EXPECT_TRUE(isComplete);
  other.join();
}

TEST(WaitForAgentInterruption, ACompletionAfterTheInterruptionHasNoEffect) {
  std::function<void()> kept;
  std::thread other;
  waitForCompletionOrAgentInterruption([&](auto completion) {
    kept = completion;
    other = std::thread([completion = std::move(completion)] {
      announceInterruption();
      completion();
    });
  });
  other.join();
  kept();
  std::thread([&] { kept(); }).join();
  EXPECT_FALSE(isObserved());
}

TEST(WaitForAgentInterruption, AnInterruptionAfterTheCompletionHasNoEffect) {
  std::thread other;
  waitForCompletionOrAgentInterruption([&](auto completion) {
    other = std::thread([completion = std::move(completion)] {
      completion();
      announceInterruption();
    });
  });
  other.join();
  announceInterruption();
  std::thread([] { announceInterruption(); }).join();
  EXPECT_FALSE(isObserved());
}

TEST(WaitForAgentInterruption, InterruptionsAndCompletionsOfManyThreadsMayMeet) {
  for (int round = 0; round < 50; ++round) {
    std::latch start(8);
    std::vector<std::thread> threads;
    waitForCompletionOrAgentInterruption([&](auto completion) {
      for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&, number, completion] {
          start.arrive_and_wait();
          if (number % 2 == 0) {
            completion();
          } else {
            announceInterruption();
          }
        });
      }
    });
    EXPECT_FALSE(isObserved());
    for (auto& thread : threads) thread.join();
  }
}

TEST(WaitForAgentInterruption, OneInterruptionFreesAllThatWait) {
  constexpr int kThreads = 16;
  std::latch waiting(kThreads);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back(
        [&] { waitForCompletionOrAgentInterruption([&](const auto&) { waiting.count_down(); }); });
  }
  waiting.wait();
  announceInterruption();
  for (auto& thread : threads) thread.join();
  EXPECT_FALSE(isObserved());
}

}  // namespace
}  // namespace vornix
