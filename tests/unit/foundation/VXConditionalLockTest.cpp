#include "foundation/VXConditionalLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

#include "foundation/VXBoolConditionalLock.h"
#include "platform/base/NSDictionary.h"
#include "platform/base/NSNull.h"
#include "tests/support/Record.h"

namespace vornix {
namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;

// Returns when that many threads wait on the lock.
void awaitWaiters(const VXConditionalLock& lock, std::size_t count) {
  while (lock.groupsToLeaveOnUnlock().size() < count) std::this_thread::yield();
}

std::future<void> waiting(const std::shared_ptr<VXConditionalLock>& lock, double timeout) {
  return std::async(std::launch::async, [=] { lock->waitForUnlockWithTimeout(timeout); });
}

std::shared_ptr<NSObject> number(int value) {
  return std::make_shared<NSNumber>(Value(value));
}

TEST(VXBoolConditionalLock, ANewLockIsUnlockedAndWaitingReturnsAtOnce) {
  const auto lock = VXBoolConditionalLock::create();
  EXPECT_FALSE(lock->isLocked());
  EXPECT_FALSE(lock->boolValue());
  ASSERT_NE(lock->value(), nullptr);
  lock->waitForUnlock();
  lock->waitForUnlockWithTimeout(0);
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXBoolConditionalLock, AWaiterGivesUpAfterItsTimeoutAndALaterUnlockFreesTheOthers) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  const auto start = system_clock::now();
  auto limited = waiting(lock, 0.5);
  auto unlimited = waiting(lock, -1);
  awaitWaiters(*lock, 2);
  limited.get();
  EXPECT_GE(system_clock::now() - start, milliseconds(500));
  EXPECT_TRUE(lock->isLocked());
  EXPECT_EQ(lock->groupsToLeaveOnUnlock().size(), 2U);
  lock->setBoolValue(false);
  unlimited.get();
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXBoolConditionalLock, OneUnlockFreesAllWaitersHoweverOftenItWasLocked) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  auto first = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  lock->setBoolValue(true);
  auto second = waiting(lock, -1);
  awaitWaiters(*lock, 2);
  lock->setBoolValue(false);
  first.get();
  second.get();
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXBoolConditionalLock, ATimeoutOfZeroBlocksUntilTheUnlock) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  auto waiter = waiting(lock, 0);
  awaitWaiters(*lock, 1);
  EXPECT_EQ(waiter.wait_for(milliseconds(50)), std::future_status::timeout);
  lock->setBoolValue(false);
  waiter.get();
}

TEST(VXBoolConditionalLock, ATimeoutThatIsNoNumberOrBeyondTheClockWaitsForTheUnlock) {
  for (const double timeout : {std::numeric_limits<double>::quiet_NaN(), 1e300}) {
    const auto lock = VXBoolConditionalLock::create();
    lock->setBoolValue(true);
    auto waiter = waiting(lock, timeout);
    awaitWaiters(*lock, 1);
    EXPECT_EQ(waiter.wait_for(milliseconds(20)), std::future_status::timeout);
    lock->setBoolValue(false);
    waiter.get();
  }
}

TEST(VXBoolConditionalLock, AValueThatIsNoNumberIsFalse) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  auto waiter = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  lock->setValue(std::make_shared<NSString>("true"));
  waiter.get();
  EXPECT_FALSE(lock->isLocked());
  EXPECT_FALSE(lock->boolValue());
  lock->setValue(nullptr);
  EXPECT_FALSE(lock->isLocked());
}

TEST(VXBoolConditionalLock, AnyNumberThatIsNotZeroLocks) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setValue(number(7));
  EXPECT_TRUE(lock->isLocked());
  EXPECT_TRUE(lock->boolValue());
  lock->setValue(number(0));
  EXPECT_FALSE(lock->isLocked());
}

TEST(VXBoolConditionalLock, LockingAgainRightAfterAnUnlockDoesNotHoldThoseFreed) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  std::vector<std::future<void>> waiters;
  for (int count = 0; count < 8; ++count) waiters.push_back(waiting(lock, -1));
  awaitWaiters(*lock, 8);
  lock->setBoolValue(false);
  lock->setBoolValue(true);
  for (auto& waiter : waiters) waiter.get();
  EXPECT_TRUE(lock->isLocked());
}

TEST(VXBoolConditionalLock, SixtyFourThreadsAreAllFreedByEachUnlock) {
  const auto lock = VXBoolConditionalLock::create();
  for (int round = 0; round < 5; ++round) {
    lock->setBoolValue(true);
    std::vector<std::thread> threads;
    for (int count = 0; count < 64; ++count) {
      threads.emplace_back([&, count] {
        if (count % 8 == 0) lock->waitForUnlockWithTimeout(0.001);
        lock->waitForUnlock();
        EXPECT_FALSE(lock->isLocked());
      });
    }
    awaitWaiters(*lock, 64);
    lock->setBoolValue(false);
    for (auto& thread : threads) thread.join();
    EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
  }
}

TEST(VXBoolConditionalLock, ManyThreadsMaySetAndWaitAtTheSameTime) {
  const auto lock = VXBoolConditionalLock::create();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 64; ++thread) {
    threads.emplace_back([&, thread] {
      for (int count = 0; count < 50; ++count) {
        if (thread % 2 == 0) lock->setBoolValue(count % 2 == 0);
        lock->waitForUnlockWithTimeout(0.0001);
        (void)lock->value();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  lock->setBoolValue(false);
  EXPECT_FALSE(lock->isLocked());
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

// Half of the threads wait for good, a quarter give up after a moment, and a quarter turn the lock
// on and off until every one of the others has waited as often as it should.
TEST(VXBoolConditionalLock, SixtyFourThreadsMayWaitGiveUpAndSetTheValueAtTheSameTime) {
  constexpr int kThreads = 64;
  constexpr int kRounds = 100;
  const auto lock = VXBoolConditionalLock::create();
  std::atomic<int> waiting = kThreads * 3 / 4;
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&, number] {
      if (number % 4 == 0) {
        for (bool value = true; waiting > 0; value = !value) lock->setBoolValue(value);
        return;
      }
      for (int round = 0; round < kRounds; ++round) {
        lock->waitForUnlockWithTimeout(number % 4 == 1 ? 0.0001 : -1);
      }
      --waiting;
    });
  }
  // A setter may end on true, but not before nobody waits.
  for (auto& thread : threads) thread.join();
  lock->setBoolValue(true);
  lock->setBoolValue(false);
  EXPECT_FALSE(lock->isLocked());
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXBoolConditionalLock, IsLockedByEveryNumberButNoughtAndByNothingElse) {
  struct Case {
    std::shared_ptr<NSObject> value;
    bool locks;
  };
  const std::vector<Case> cases{{nullptr, false},
                                {tests::number(true), true},
                                {tests::number(false), false},
                                {tests::number(1), true},
                                {tests::number(0), false},
                                {tests::number(-1), true},
                                {tests::number(std::numeric_limits<std::int64_t>::min()), true},
                                {tests::number(std::numeric_limits<std::int64_t>::max()), true},
                                {tests::number(0.0), false},
                                {tests::number(-0.0), false},
                                {tests::number(0.5), true},
                                {tests::number(1e300), true},
                                {tests::number(std::numeric_limits<double>::denorm_min()), true},
                                {tests::number(std::numeric_limits<double>::infinity()), true},
                                {tests::text(""), false},
                                {tests::text("1"), false},
                                {tests::text("YES"), false},
                                {tests::text("true"), false},
                                {tests::text("\xF0\x9F\x98\x80"), false},
                                {tests::text("\xFF"), false},
                                {NSNull::null(), false},
                                {std::make_shared<NSObject>(), false},
                                {std::make_shared<NSDictionary>(), false},
                                {VXConditionalLock::create(), false}};
  const auto lock = VXBoolConditionalLock::create();
  for (std::size_t index = 0; index < cases.size(); ++index) {
    lock->setValue(cases[index].value);
    EXPECT_EQ(lock->value(), cases[index].value) << index;
    EXPECT_EQ(lock->boolValue(), cases[index].locks) << index;
    EXPECT_EQ(lock->isLocked(), cases[index].locks) << index;
  }
}

TEST(VXBoolConditionalLock, WhetherAValueLocksIsToldOfThePresentOneWhateverIsAsked) {
  const auto lock = VXBoolConditionalLock::create();
  EXPECT_FALSE(lock->shouldLockForValue(tests::number(true)));
  lock->setBoolValue(true);
  EXPECT_TRUE(lock->shouldLockForValue(nullptr));
  lock->setBoolValue(false);
}

TEST(VXConditionalLock, APlainLockNeverBlocksWhateverItsValue) {
  const auto lock = VXConditionalLock::create();
  EXPECT_EQ(lock->value(), nullptr);
  for (const auto& value : {number(1), number(0), std::shared_ptr<NSObject>(),
                            std::shared_ptr<NSObject>(std::make_shared<NSString>("locked"))}) {
    lock->setValue(value);
    EXPECT_EQ(lock->value(), value);
    EXPECT_FALSE(lock->isLocked());
    lock->waitForUnlock();
  }
}

// Locked from the start; refuses texts.
class ScriptedLock final : public VXConditionalLock {
 public:
  using VXConditionalLock::VXConditionalLock;

  void setupInitialValues() override {
    VXConditionalLock::setupInitialValues();
    calls.emplace_back("setupInitialValues");
  }
  bool shouldLockForValue(const std::shared_ptr<NSObject>& value) override {
    calls.emplace_back("shouldLockForValue");
    if (std::dynamic_pointer_cast<NSString>(value)) throw std::invalid_argument("a text");
    return value == nullptr;
  }

  std::vector<std::string> calls;
};

TEST(VXConditionalLock, AsksTheSubclassForItsValuesAndThenWhetherTheyLock) {
  const auto lock = VXConditionalLock::create<ScriptedLock>();
  EXPECT_EQ(lock->calls, (std::vector<std::string>{"setupInitialValues", "shouldLockForValue"}));
  EXPECT_TRUE(lock->isLocked());
}

TEST(VXConditionalLock, IsUsableAfterTheSubclassThrew) {
  const auto lock = VXConditionalLock::create<ScriptedLock>();
  auto waiter = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  const auto refused = std::make_shared<NSString>("refused");
  EXPECT_THROW(lock->setValue(refused), std::invalid_argument);
  EXPECT_EQ(lock->value(), refused);
  EXPECT_TRUE(lock->isLocked());
  lock->setValue(number(1));
  waiter.get();
}

TEST(VXConditionalLock, AValueThatChangesNothingKeepsTheWaiters) {
  const auto lock = VXConditionalLock::create<ScriptedLock>();
  auto waiter = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  lock->setValue(nullptr);
  EXPECT_EQ(lock->groupsToLeaveOnUnlock().size(), 1U);
  lock->setValue(number(1));
  waiter.get();
}

}  // namespace
}  // namespace vornix
