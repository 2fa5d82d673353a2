#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <limits>
#include <thread>
#include <vector>

#include "foundation/VXBoolConditionalLock.h"
#include "tests/unit/foundation/LockWaiters.h"

namespace vornix {
namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;
using tests::awaitWaiters;
using tests::waiting;

// More than any machine under load needs.
constexpr std::chrono::seconds kGenerous(30);

TEST(VXBoolConditionalLockWaiting, AWaiterGivesUpAfterItsTimeoutAndALaterUnlockFreesTheOthers) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  const auto start = system_clock::now();
  auto limited = waiting(lock, 0.5);
  auto unlimited = waiting(lock, -1);
  awaitWaiters(*lock, 2);
  limited.get();
  EXPECT_GE(system_clock::now() - start, milliseconds(500));
  EXPECT_LT(system_clock::now() - start, kGenerous);
  EXPECT_TRUE(lock->isLocked());
  EXPECT_EQ(lock->groupsToLeaveOnUnlock().size(), 2U);
  lock->setBoolValue(false);
  unlimited.get();
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXBoolConditionalLockWaiting, OneUnlockFreesAllWaitersHoweverOftenItWasLocked) {
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

using Limits = std::numeric_limits<double>;

// Short ones among them, which an unlocked lock does not wait for either.
constexpr std::array kTimeouts{-1.0,
                               -0.5,
                               -1e-9,
                               -1e300,
                               -Limits::denorm_min(),
                               -Limits::infinity(),
                               -0.0,
                               0.0,
                               Limits::denorm_min(),
                               Limits::min(),
                               1e-9,
                               0.001,
                               0.5,
                               1.0,
                               60.0,
                               86400.0,
                               4e9,
                               1e10,
                               1e300,
                               Limits::max(),
                               Limits::infinity(),
                               Limits::quiet_NaN(),
                               -Limits::quiet_NaN()};

TEST(VXBoolConditionalLockWaiting, ReturnsAtOnceWhereTheLockIsUnlockedWhateverTheTimeout) {
  const auto lock = VXBoolConditionalLock::create();
  for (const double timeout : kTimeouts) {
    auto waiter = waiting(lock, timeout);
    EXPECT_EQ(waiter.wait_for(kGenerous), std::future_status::ready) << timeout;
    EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty()) << timeout;
  }
}

// Zero, what is below, and what is no number mean no limit; beyond the clock's range there is none.
TEST(VXBoolConditionalLockWaiting, BlocksUntilTheUnlockWithoutATimeoutThatTheClockCanReach) {
  for (const double timeout : kTimeouts) {
    if (timeout > 0 && timeout < 60) continue;
    const auto lock = VXBoolConditionalLock::create();
    lock->setBoolValue(true);
    auto waiter = waiting(lock, timeout);
    awaitWaiters(*lock, 1);
    EXPECT_EQ(waiter.wait_for(milliseconds(20)), std::future_status::timeout) << timeout;
    lock->setBoolValue(false);
    waiter.get();
  }
}

TEST(VXBoolConditionalLockWaiting, GivesUpAlsoAfterATimeoutTooShortToMeasure) {
  for (const double timeout : {Limits::denorm_min(), Limits::min(), 1e-9, 1e-6, 0.001}) {
    const auto lock = VXBoolConditionalLock::create();
    lock->setBoolValue(true);
    auto waiter = waiting(lock, timeout);
    EXPECT_EQ(waiter.wait_for(kGenerous), std::future_status::ready) << timeout;
    lock->setBoolValue(false);
  }
}

TEST(VXBoolConditionalLockWaiting, LockingAgainRightAfterAnUnlockDoesNotHoldThoseFreed) {
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

TEST(VXBoolConditionalLockWaiting, SixtyFourThreadsAreAllFreedByEachUnlock) {
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

TEST(VXBoolConditionalLockWaiting, ManyThreadsMaySetAndWaitAtTheSameTime) {
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
TEST(VXBoolConditionalLockWaiting, SixtyFourThreadsMayWaitGiveUpAndSetTheValueAtTheSameTime) {
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

}  // namespace
}  // namespace vornix
