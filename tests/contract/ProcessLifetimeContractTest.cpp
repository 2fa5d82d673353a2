#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <thread>

#include "platform/desktop/ProcessLifetime.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/fakes/FakeProcessLifetime.h"

namespace vornix {
namespace {

constexpr double kGenerous = 60;
constexpr int kAsExpected = 0;
constexpr int kOtherwise = 1;
constexpr int kDidNotEnd = 99;

// Plays a life in this very process.
class FakeLife {
 public:
  void watch(EventWaiter& waiter) { lifetime_.watch(waiter); }
  void request() { lifetime_.requestTermination(); }
  [[nodiscard]] bool isRequested() const { return lifetime_.terminationWasRequested(); }
  [[noreturn]] void end(int status) { lifetime_.end(status); }

  static int statusOf(const std::function<void(FakeLife&)>& story) {
    FakeLife life;
    try {
      story(life);
    } catch (const fakes::ProcessEnded& ended) {
      return ended.status;
    }
    return kDidNotEnd;
  }

 private:
  fakes::FakeProcessLifetime lifetime_;
};

// Lives in a process of its own, and is asked to end by a signal.
class RealLife {
 public:
  void watch(EventWaiter& waiter) { watchTerminationRequests(waiter); }
  void request() { (void)raise(SIGTERM); }
  [[nodiscard]] bool isRequested() const { return terminationWasRequested(); }
  [[noreturn]] void end(int status) { endProcess(status); }

  static int statusOf(const std::function<void(RealLife&)>& story) {
    const contract::ForkedProcess process([&story] {
      RealLife life;
      story(life);
    });
    return process.awaitEnd();
  }
};

template <typename Life>
class ProcessLifetimeContract : public testing::Test {
 protected:
  static EventWaiter& waiter() { return NSRunLoop::mainRunLoop()->eventWaiter(); }
  // Whether something other than the time ended the wait.
  static bool isWoken() {
    const double deadline = waiter().now() + kGenerous;
    (void)waiter().wait(deadline, {});
    return waiter().now() < deadline;
  }
};

using Lives = testing::Types<FakeLife, RealLife>;
TYPED_TEST_SUITE(ProcessLifetimeContract, Lives);

TYPED_TEST(ProcessLifetimeContract, EndsWithTheStatusGiven) {
  for (const int status : {0, 3, 70}) {
    EXPECT_EQ(TypeParam::statusOf([status](TypeParam& life) { life.end(status); }), status);
  }
}

TYPED_TEST(ProcessLifetimeContract, WasNotAskedToEndAtFirst) {
  EXPECT_EQ(TypeParam::statusOf([](TypeParam& life) {
              life.watch(TestFixture::waiter());
              life.end(life.isRequested() ? kOtherwise : kAsExpected);
            }),
            kAsExpected);
}

TYPED_TEST(ProcessLifetimeContract, NotesARequestAndLivesOn) {
  EXPECT_EQ(TypeParam::statusOf([](TypeParam& life) {
              life.watch(TestFixture::waiter());
              life.request();
              life.end(life.isRequested() ? kAsExpected : kOtherwise);
            }),
            kAsExpected);
}

TYPED_TEST(ProcessLifetimeContract, ARequestEndsTheNextWait) {
  EXPECT_EQ(TypeParam::statusOf([](TypeParam& life) {
              life.watch(TestFixture::waiter());
              life.request();
              life.end(TestFixture::isWoken() ? kAsExpected : kOtherwise);
            }),
            kAsExpected);
}

TYPED_TEST(ProcessLifetimeContract, ARequestThatReachesAnotherThreadEndsTheWait) {
  EXPECT_EQ(TypeParam::statusOf([](TypeParam& life) {
              life.watch(TestFixture::waiter());
              std::thread other([&life] { life.request(); });
              const bool isWoken = TestFixture::isWoken();
              other.join();
              life.end(isWoken && life.isRequested() ? kAsExpected : kOtherwise);
            }),
            kAsExpected);
}

TYPED_TEST(ProcessLifetimeContract, ARequestIsNotForgottenOnceTheLoopHasSeenIt) {
  EXPECT_EQ(TypeParam::statusOf([](TypeParam& life) {
              const auto loop = NSRunLoop::mainRunLoop();
              life.watch(loop->eventWaiter());
              life.request();
              const bool seen = loop->runUntil([&life] { return life.isRequested(); }, kGenerous);
              life.end(seen && life.isRequested() ? kAsExpected : kOtherwise);
            }),
            kAsExpected);
}

TYPED_TEST(ProcessLifetimeContract, RequestsRepeatedAtOnceDoNotCutTheEndShort) {
  EXPECT_EQ(TypeParam::statusOf([](TypeParam& life) {
              life.watch(TestFixture::waiter());
              for (int request = 0; request < 3; ++request) life.request();
              life.end(7);
            }),
            7);
}

}  // namespace
}  // namespace vornix
