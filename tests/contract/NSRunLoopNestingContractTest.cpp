#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/RunLoopFixture.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;

template <typename Time>
class NSRunLoopNesting : public RunLoopFixture<Time> {};
TYPED_TEST_SUITE(NSRunLoopNesting, Times);

TYPED_TEST(NSRunLoopNesting, StopEndsTheInnermostRun) {
  this->loop_.performBlock([&] {
    this->loop_.performAfterDelay([&] { this->loop_.stop(); }, 0);
    this->loop_.run();
    this->note("inner run over")();
    this->loop_.performAfterDelay([&] { this->loop_.stop(); }, 0);
  });
  this->loop_.run();
  EXPECT_THAT(this->events_, ElementsAre("inner run over"));
}

TYPED_TEST(NSRunLoopNesting, ABlockMayRunTheLoop) {
  this->loop_.performBlock([&] {
    EXPECT_TRUE(this->runUntilEvents(2));
    this->note("outer")();
  });
  this->loop_.performBlock(this->note("nested block"));
  this->loop_.performAfterDelay(this->note("nested timer"), 0);
  EXPECT_TRUE(this->runUntilEvents(3));
  EXPECT_EQ(this->events_.back(), "outer");
}

TYPED_TEST(NSRunLoopNesting, ATimerMayRunTheLoopForOnePass) {
  this->loop_.performAfterDelay(
      [&] {
        this->loop_.performAfterDelay(this->note("nested timer"), 0);
        this->loop_.performAfterDelay([&] { this->loop_.performBlock(this->note("nested block")); },
                                      kShort);
        EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kGenerous)));
        this->note("outer")();
      },
      0);
  EXPECT_TRUE(this->runUntilEvents(3));
  EXPECT_THAT(this->events_, ElementsAre("nested timer", "nested block", "outer"));
}

TYPED_TEST(NSRunLoopNesting, TheMainQueueIsNotDrainedFromInsideABlockOfIt) {
  this->loop_.dispatchMainQueue([&] {
    this->loop_.dispatchMainQueue(this->note("queued from inside"));
    this->loop_.performBlock(this->note("perform"));
    (void)this->loop_.runUntil([] { return false; }, kShort);
    this->note("outer")();
  });
  EXPECT_TRUE(this->runUntilEvents(3));
  EXPECT_THAT(this->events_, ElementsAre("perform", "outer", "queued from inside"));
}

TYPED_TEST(NSRunLoopNesting, TheMainQueueIsDrainedFromInsideAPerformedBlock) {
  this->loop_.performBlock([&] {
    this->loop_.dispatchMainQueue(this->note("main queue"));
    EXPECT_TRUE(this->runUntilEvents(1));
    this->note("outer")();
  });
  EXPECT_TRUE(this->runUntilEvents(2));
  EXPECT_THAT(this->events_, ElementsAre("main queue", "outer"));
}

}  // namespace
}  // namespace vornix::contract
