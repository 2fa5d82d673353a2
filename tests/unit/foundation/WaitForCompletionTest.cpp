#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "foundation/MainThreadDispatch.h"
#include "platform/runloop/NSNotificationCenter.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

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
