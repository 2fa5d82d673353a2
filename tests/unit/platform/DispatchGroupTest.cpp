#include "platform/runloop/DispatchGroup.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace vornix {
namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;

Date now() {
  return Date::fromUnixTime(
      std::chrono::duration<double>(system_clock::now().time_since_epoch()).count());
}

TEST(DispatchGroup, WaitingWithoutWorkReturnsAtOnce) {
  DispatchGroup group;
  group.wait();
  EXPECT_TRUE(group.waitUntil(Date{0}));
}

TEST(DispatchGroup, FreesEveryWaiterWhenTheLastWorkIsLeft) {
  DispatchGroup group;
  group.enter();
  group.enter();
  std::atomic<int> freed = 0;
  std::vector<std::thread> waiters;
  for (int count = 0; count < 8; ++count) {
    waiters.emplace_back([&] {
      group.wait();
      ++freed;
    });
  }
  group.leave();
  EXPECT_FALSE(group.waitUntil(now()));
  EXPECT_EQ(freed, 0);
  group.leave();
  for (auto& waiter : waiters) waiter.join();
  EXPECT_EQ(freed, 8);
}

TEST(DispatchGroup, GivesUpAtTheDateAndNotBefore) {
  DispatchGroup group;
  group.enter();
  const auto deadline = system_clock::now() + milliseconds(30);
  EXPECT_FALSE(group.waitUntil(deadline));
  EXPECT_GE(system_clock::now(), deadline);
  EXPECT_FALSE(group.waitUntil(Date{-1e300}));
}

TEST(DispatchGroup, ADateBeyondTheClockWaitsForTheWork) {
  DispatchGroup group;
  group.enter();
  std::thread worker([&] { group.leave(); });
  EXPECT_TRUE(group.waitUntil(Date{1e300}));
  worker.join();
}

TEST(DispatchGroup, LeavingMoreOftenThanEnteringHasNoEffect) {
  DispatchGroup group;
  group.leave();
  group.enter();
  EXPECT_FALSE(group.waitUntil(now()));
  group.leave();
  group.leave();
  EXPECT_TRUE(group.waitUntil(now()));
}

}  // namespace
}  // namespace vornix
