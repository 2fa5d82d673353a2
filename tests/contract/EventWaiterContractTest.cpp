#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "platform/runloop/EventWaiter.h"
#include "tests/fakes/FakeEventWaiter.h"

namespace vornix {
namespace {

// One waiter and two handles that can be made ready.
class RealWorld {
 public:
  RealWorld() {
    for (auto& ends : pipes_) EXPECT_EQ(pipe(ends), 0);
  }
  ~RealWorld() {
    for (auto& ends : pipes_) {
      close(ends[0]);
      if (ends[1] >= 0) close(ends[1]);
    }
  }

  EventWaiter& waiter() { return *waiter_; }
  WaitHandle handle(int number) { return {.descriptor = pipes_[number][0]}; }
  void makeReady(int number) { EXPECT_EQ(write(pipes_[number][1], "x", 1), 1); }
  void makeFail(int number) {
    close(pipes_[number][1]);
    pipes_[number][1] = -1;
  }

 private:
  std::unique_ptr<EventWaiter> waiter_ = makeEventWaiter();
  int pipes_[2][2] = {};
};

class FakeWorld {
 public:
  EventWaiter& waiter() { return waiter_; }
  WaitHandle handle(int number) { return {.descriptor = number}; }
  void makeReady(int number) { waiter_.setReady(number); }
  void makeFail(int number) { waiter_.setReady(number); }

 private:
  fakes::FakeSystemClock clock_;
  fakes::FakeEventWaiter waiter_{clock_};
};

template <typename World>
class EventWaiterContract : public testing::Test {
 protected:
  EventWaiter& waiter() { return world_.waiter(); }
  std::vector<std::size_t> wait(std::optional<double> seconds,
                                const std::vector<WaitHandle>& handles = {}) {
    return waiter().wait(seconds ? std::optional(waiter().now() + *seconds) : std::nullopt,
                         handles);
  }

  World world_;
};

using Worlds = testing::Types<FakeWorld, RealWorld>;
TYPED_TEST_SUITE(EventWaiterContract, Worlds);

using Positions = std::vector<std::size_t>;
constexpr double kShort = 0.02;
constexpr double kGenerous = 60;

TYPED_TEST(EventWaiterContract, WaitsUntilTheDeadlineAndNeverReturnsBefore) {
  for (int round = 0; round < 5; ++round) {
    const double deadline = this->waiter().now() + kShort * round / 5;
    EXPECT_EQ(this->waiter().wait(deadline, {}), Positions{});
    EXPECT_GE(this->waiter().now(), deadline);
  }
}

TYPED_TEST(EventWaiterContract, ReturnsAtOnceFromAPassedDeadline) {
  const double before = this->waiter().now();
  EXPECT_EQ(this->wait(-1), Positions{});
  EXPECT_LT(this->waiter().now(), before + kGenerous);
}

TYPED_TEST(EventWaiterContract, AWakeBeforeTheWaitEndsIt) {
  const double before = this->waiter().now();
  this->waiter().wake();
  EXPECT_EQ(this->wait(kGenerous), Positions{});
  EXPECT_LT(this->waiter().now(), before + kGenerous);
}

TYPED_TEST(EventWaiterContract, SeveralWakesBeforeAWaitCountOnce) {
  for (int count = 0; count < 3; ++count) this->waiter().wake();
  (void)this->wait(kGenerous);
  const double deadline = this->waiter().now() + kShort;
  (void)this->waiter().wait(deadline, {});
  EXPECT_GE(this->waiter().now(), deadline);
}

TYPED_TEST(EventWaiterContract, AWakeAlsoCountsForAWaitThatIsOverAtOnce) {
  this->waiter().wake();
  (void)this->wait(-1);
  const double deadline = this->waiter().now() + kShort;
  (void)this->waiter().wait(deadline, {});
  EXPECT_GE(this->waiter().now(), deadline);
}

TYPED_TEST(EventWaiterContract, AnotherThreadEndsAWaitWithoutLimit) {
  for (int round = 0; round < 200; ++round) {
    std::thread other([&] { this->waiter().wake(); });
    EXPECT_EQ(this->wait(std::nullopt), Positions{});
    other.join();
  }
}

TYPED_TEST(EventWaiterContract, AWakeThatCameWhileTheWaitBeforeWasEndingIsNotLost) {
  std::atomic<int> requested = 0;
  std::thread other([&] {
    for (int count = 0; count < 2000; ++count) {
      ++requested;
      this->waiter().wake();
    }
  });
  while (requested < 2000) (void)this->wait(std::nullopt);
  other.join();
  this->waiter().wake();
  EXPECT_EQ(this->wait(std::nullopt), Positions{});
}

TYPED_TEST(EventWaiterContract, AnswersThePositionsOfTheHandlesThatAreReady) {
  const std::vector handles{this->world_.handle(0), this->world_.handle(1)};
  this->world_.makeReady(1);
  EXPECT_EQ(this->wait(kGenerous, handles), Positions{1});
  this->world_.makeReady(0);
  EXPECT_EQ(this->wait(kGenerous, handles), (Positions{0, 1}));
}

TYPED_TEST(EventWaiterContract, ASilentHandleDoesNotEndTheWait) {
  const std::vector handles{this->world_.handle(0)};
  const double deadline = this->waiter().now() + kShort;
  EXPECT_EQ(this->waiter().wait(deadline, handles), Positions{});
  EXPECT_GE(this->waiter().now(), deadline);
}

TYPED_TEST(EventWaiterContract, AFailedHandleIsReady) {
  const std::vector handles{this->world_.handle(0), this->world_.handle(1)};
  this->world_.makeFail(0);
  EXPECT_EQ(this->wait(kGenerous, handles), Positions{0});
}

TYPED_TEST(EventWaiterContract, ReportsReadyHandlesThoughItWasWokenOrIsOver) {
  const std::vector handles{this->world_.handle(0)};
  this->world_.makeReady(0);
  this->waiter().wake();
  EXPECT_EQ(this->wait(kGenerous, handles), Positions{0});
  EXPECT_EQ(this->wait(-1, handles), Positions{0});
}

TYPED_TEST(EventWaiterContract, AHandleThatBecomesReadyLaterEndsTheWait) {
  const std::vector handles{this->world_.handle(0)};
  std::thread other([&] { this->world_.makeReady(0); });
  EXPECT_EQ(this->wait(std::nullopt, handles), Positions{0});
  other.join();
}

EventWaiter* waiterOfTheHandler = nullptr;

TEST(LinuxEventWaiter, ASignalHandlerCanEndTheWait) {
  const auto waiter = makeEventWaiter();
  waiterOfTheHandler = waiter.get();
  struct sigaction action {};
  action.sa_handler = [](int) { waiterOfTheHandler->wake(); };
  ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
  alarm(1);
  EXPECT_EQ(waiter->wait(std::nullopt, {}), Positions{});
  waiterOfTheHandler = nullptr;
}

TEST(LinuxEventWaiter, AFarAwayOrMeaninglessDeadlineIsNone) {
  const auto waiter = makeEventWaiter();
  for (const double deadline :
       {1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    std::thread other([&] { waiter->wake(); });
    EXPECT_EQ(waiter->wait(deadline, {}), Positions{});
    other.join();
  }
}

}  // namespace
}  // namespace vornix
