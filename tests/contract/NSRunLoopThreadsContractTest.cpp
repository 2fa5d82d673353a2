#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/contract/RunLoopFixture.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;

template <typename Time>
class NSRunLoopThreads : public RunLoopFixture<Time> {};
TYPED_TEST_SUITE(NSRunLoopThreads, Times);

TYPED_TEST(NSRunLoopThreads, ABlockFromAnotherThreadWakesTheLoop) {
  this->time_.workWithThreads();
  std::thread other([&] { this->loop_.performBlock([&] { this->loop_.stop(); }); });
  this->loop_.run();
  other.join();
}

TYPED_TEST(NSRunLoopThreads, AThreadThatWaitsIsFreedWhenItsBlockHasRun) {
  this->time_.workWithThreads();
  const auto loopThread = std::this_thread::get_id();
  std::atomic<bool> isOver = false;
  std::thread other([&] {
    std::thread::id ranOn;
    this->loop_.performBlockAndWait([&] { ranOn = std::this_thread::get_id(); });
    EXPECT_EQ(ranOn, loopThread);
    isOver = true;
    this->loop_.eventWaiter().wake();
  });
  EXPECT_TRUE(this->loop_.runUntil([&] { return isOver.load(); }, kGenerous));
  other.join();
}

TYPED_TEST(NSRunLoopThreads, AThreadThatWaitsIsFreedWhenTheLoopEndsWithoutServingIt) {
  auto loop = std::make_unique<NSRunLoop>(this->time_.makeWaiter(), this->time_.clock());
  this->time_.workWithThreads();
  std::atomic<bool> hasRun = false;
  std::thread other([&] { loop->performBlockAndWait([&] { hasRun = true; }, {kPanelMode}); });
  // The queued block wakes the loop, which has no business in that mode.
  (void)loop->eventWaiter().wait(std::nullopt, {});
  loop.reset();
  other.join();
  EXPECT_FALSE(hasRun);
}

TYPED_TEST(NSRunLoopThreads, WaitingOnTheLoopsOwnThreadRunsTheBlockAtOnce) {
  this->loop_.performBlock(this->note("queued"));
  this->loop_.performBlockAndWait(this->note("at once"));
  EXPECT_THAT(this->events_, ElementsAre("at once"));
}

TYPED_TEST(NSRunLoopThreads, NotWaitingOnTheLoopsOwnThreadAlwaysQueues) {
  this->loop_.performBlock(this->note("queued"));
  EXPECT_TRUE(this->events_.empty());
  EXPECT_TRUE(this->runUntilEvents(1));
}

TYPED_TEST(NSRunLoopThreads, WaitsForTheModesOfAPerform) {
  this->time_.workWithThreads();
  std::thread other(
      [&] { this->loop_.performBlockAndWait([&] { this->note("panel")(); }, {kPanelMode}); });
  EXPECT_TRUE(this->runUntilEvents(1, kPanelMode));
  other.join();
}

TYPED_TEST(NSRunLoopThreads, ServesBlocksOfManyThreadsEachInItsOrder) {
  this->time_.workWithThreads();
  constexpr int kThreads = 8;
  constexpr int kBlocks = 500;
  std::vector<int> next(kThreads);
  int served = 0;
  bool inOrder = true;
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&, number] {
      for (int count = 0; count < kBlocks; ++count) {
        this->loop_.performBlock([&, number, count] {
          inOrder = inOrder && next[static_cast<std::size_t>(number)]++ == count;
          ++served;
        });
      }
    });
  }
  EXPECT_TRUE(this->loop_.runUntil([&] { return served == kThreads * kBlocks; }, kGenerous));
  EXPECT_TRUE(inOrder);
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace vornix::contract
