#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/runloop/NSOperationQueue.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeEventWaiter.h"

namespace vornix {
namespace {

TEST(MainRunLoop, IsTheLoopOfTheThreadThatStartedTheProgram) {
  EXPECT_TRUE(isMainThread());
  EXPECT_EQ(NSRunLoop::currentRunLoop(), NSRunLoop::mainRunLoop());
  std::shared_ptr<NSRunLoop> other;
  std::thread thread([&] {
    EXPECT_FALSE(isMainThread());
    other = NSRunLoop::currentRunLoop();
    EXPECT_EQ(NSRunLoop::currentRunLoop(), other);
  });
  thread.join();
  ASSERT_NE(other, nullptr);
  EXPECT_NE(other, NSRunLoop::mainRunLoop());
}

TEST(MainRunLoop, LivesOnTheProcessesFakeClock) {
  const double start = fakes::processClock().systemUptime();
  const Date date = fakes::processClock().now();
  bool hasFired = false;
  NSRunLoop::mainRunLoop()->performAfterDelay([&] { hasFired = true; }, 1200);
  EXPECT_TRUE(NSRunLoop::mainRunLoop()->runUntil([&] { return hasFired; }, 2000));
  EXPECT_EQ(fakes::processClock().systemUptime(), start + 1200);
  EXPECT_EQ(fakes::processClock().now(), date.addingTimeInterval(1200));
}

TEST(MainRunLoop, APassOfItWaitsForItsMainQueueThoughNothingIsThere) {
  const auto loop = NSRunLoop::mainRunLoop();
  const double start = loop->eventWaiter().now();
  EXPECT_TRUE(loop->runModeBeforeDate(NSDefaultRunLoopMode,
                                      fakes::processClock().now().addingTimeInterval(0.5)));
  EXPECT_EQ(loop->eventWaiter().now(), start + 0.5);
  EXPECT_FALSE(
      loop->runModeBeforeDate("panel", fakes::processClock().now().addingTimeInterval(0.5)));
}

TEST(MainRunLoop, AnOperationQueueMayWaitForTheMainThread) {
  const auto loop = NSRunLoop::mainRunLoop();
  fakes::waiterOf(*loop).holdTime(true);
  std::vector<std::string> events;
  std::atomic<bool> isOver = false;
  NSOperationQueue queue(1);
  queue.addOperation([&] {
    loop->performBlockAndWait([&] {
      EXPECT_TRUE(isMainThread());
      events.emplace_back("on main");
    });
    dispatchAsyncOnMainQueue([&] {
      EXPECT_TRUE(isMainThread());
      events.emplace_back("main queue");
      isOver = true;
    });
  });
  EXPECT_TRUE(loop->runUntil([&] { return isOver.load(); }, 60));
  EXPECT_THAT(events, testing::ElementsAre("on main", "main queue"));
  fakes::waiterOf(*loop).holdTime(false);
}

TEST(MainRunLoop, WhatATestScriptsHappensWhileItSleeps) {
  const auto loop = NSRunLoop::mainRunLoop();
  bool hasRun = false;
  fakes::waiterOf(*loop).atNextWait([&] { loop->performBlock([&] { hasRun = true; }); });
  const double start = loop->eventWaiter().now();
  EXPECT_TRUE(loop->runUntil([&] { return hasRun; }, 60));
  EXPECT_EQ(loop->eventWaiter().now(), start);
}

}  // namespace
}  // namespace vornix
