#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "tests/contract/RunLoopFixture.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

template <typename Time>
class NSRunLoopContract : public RunLoopFixture<Time> {};
TYPED_TEST_SUITE(NSRunLoopContract, Times);

TYPED_TEST(NSRunLoopContract, RunsBlocksInTheOrderInWhichTheyWereQueued) {
  this->loop_.performBlock(this->note("first"));
  this->loop_.dispatchMainQueue(this->note("second"));
  this->loop_.performBlock(this->note("third"));
  EXPECT_TRUE(this->runUntilEvents(3));
  EXPECT_THAT(this->events_, ElementsAre("first", "second", "third"));
}

TYPED_TEST(NSRunLoopContract, RunsTimersInTheOrderOfTheirDatesAndEqualOnesAsAdded) {
  this->loop_.performAfterDelay(this->note("late"), kShort);
  this->loop_.performAfterDelay(this->note("soon"), 0);
  this->loop_.performAfterDelay(this->note("also soon"), 0);
  this->loop_.performAfterDelay(this->note("negative"), -5);
  EXPECT_TRUE(this->runUntilEvents(4));
  EXPECT_THAT(this->events_, ElementsAre("soon", "also soon", "negative", "late"));
}

TYPED_TEST(NSRunLoopContract, ATimerNeverFiresEarly) {
  for (int round = 1; round <= 5; ++round) {
    const double date = this->now() + kShort / round;
    double fired = 0;
    this->loop_.performAfterDelay([&] { fired = this->now(); }, kShort / round);
    EXPECT_TRUE(this->loop_.runUntil([&] { return fired != 0; }, kGenerous));
    EXPECT_GE(fired, date);
  }
}

TYPED_TEST(NSRunLoopContract, ADelayOfZeroStillWaitsForTheLoop) {
  this->loop_.performAfterDelay(this->note("timer"), 0);
  EXPECT_TRUE(this->events_.empty());
  EXPECT_TRUE(this->runUntilEvents(1));
}

TYPED_TEST(NSRunLoopContract, ADelayThatIsNoNumberCountsAsNone) {
  this->loop_.performAfterDelay(this->note("timer"), std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(this->runUntilEvents(1));
}

TYPED_TEST(NSRunLoopContract, ATimerFiresOnceAndReleasesWhatItHolds) {
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = held;
  this->loop_.performAfterDelay([this, held = std::move(held)] { this->note("fired")(); }, 0);
  EXPECT_FALSE(watched.expired());
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_TRUE(watched.expired());
  (void)this->loop_.runUntil([] { return false; }, kShort);
  EXPECT_THAT(this->events_, ElementsAre("fired"));
}

TYPED_TEST(NSRunLoopContract, ACancelledTimerDoesNotFire) {
  const auto cancelled = this->loop_.performAfterDelay(this->note("cancelled"), 0);
  this->loop_.performAfterDelay(this->note("kept"), kShort);
  this->loop_.cancelPerform(cancelled);
  this->loop_.cancelPerform(cancelled);
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_THAT(this->events_, ElementsAre("kept"));
}

TYPED_TEST(NSRunLoopContract, ATimerMayCancelItselfAndAnotherOne) {
  NSRunLoop::TimerToken itself = 0;
  NSRunLoop::TimerToken other = 0;
  itself = this->loop_.performAfterDelay(
      [&] {
        this->loop_.cancelPerform(itself);
        this->loop_.cancelPerform(other);
        this->note("first")();
      },
      0);
  other = this->loop_.performAfterDelay(this->note("other"), 0);
  (void)this->loop_.runUntil([] { return false; }, kShort);
  EXPECT_THAT(this->events_, ElementsAre("first"));
}

TYPED_TEST(NSRunLoopContract, CancellingATimerWhoseBlockCancelsAnotherOnRelease) {
  const auto other = this->loop_.performAfterDelay(this->note("other"), 0);
  std::shared_ptr<void> atRelease(nullptr, [&](void*) { this->loop_.cancelPerform(other); });
  const auto timer = this->loop_.performAfterDelay([held = std::move(atRelease)] {}, kGenerous);
  this->loop_.cancelPerform(timer);
  EXPECT_FALSE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(0)));
  EXPECT_TRUE(this->events_.empty());
}

TYPED_TEST(NSRunLoopContract, ATimerWaitsWhileTheLoopRunsInAnotherMode) {
  this->loop_.performAfterDelay(this->note("default"), 0);
  this->loop_.performAfterDelay(this->note("panel"), 0, {kPanelMode});
  EXPECT_TRUE(this->runUntilEvents(1, kPanelMode));
  EXPECT_THAT(this->events_, ElementsAre("panel"));
  EXPECT_TRUE(this->runUntilEvents(2));
  EXPECT_THAT(this->events_, ElementsAre("panel", "default"));
}

TYPED_TEST(NSRunLoopContract, CommonModesStandForTheDefaultModeAndThoseAdded) {
  this->loop_.performAfterDelay(this->note("timer"), 0, {NSRunLoopCommonModes});
  this->loop_.performBlock(this->note("block"));
  EXPECT_FALSE(this->loop_.runModeBeforeDate(kPanelMode, this->fromNow(kShort)));
  this->loop_.addCommonMode(kPanelMode);
  EXPECT_TRUE(this->runUntilEvents(2, kPanelMode));
}

TYPED_TEST(NSRunLoopContract, TheMainQueueIsNotDrainedOutsideTheCommonModes) {
  this->loop_.dispatchMainQueue(this->note("main queue"));
  this->loop_.performBlock(this->note("panel"), {kPanelMode});
  EXPECT_TRUE(this->runUntilEvents(1, kPanelMode));
  EXPECT_THAT(this->events_, ElementsAre("panel"));
}

TYPED_TEST(NSRunLoopContract, WithAnEmptyListOfModesNothingIsRunOrKept) {
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = held;
  this->loop_.performBlock([held] {}, {});
  this->loop_.performAfterDelay([held] {}, 0, {});
  this->loop_.performBlockAndWait([held = std::move(held)] {}, {});
  EXPECT_TRUE(watched.expired());
}

TYPED_TEST(NSRunLoopContract, OnePassReturnsFalseAtOnceWhenTheModeHasNothing) {
  const double before = this->now();
  EXPECT_FALSE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kGenerous)));
  EXPECT_LT(this->now(), before + kGenerous);
}

TYPED_TEST(NSRunLoopContract, OnePassEndsAfterTheFirstBlock) {
  this->loop_.performBlock(this->note("first"));
  this->loop_.performBlock(this->note("second"));
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kGenerous)));
  EXPECT_THAT(this->events_, ElementsAre("first"));
}

TYPED_TEST(NSRunLoopContract, TimersAloneDoNotEndAPass) {
  this->loop_.performAfterDelay(this->note("timer"), 0);
  this->loop_.performAfterDelay(this->note("much later"), 10 * kGenerous);
  const double deadline = this->now() + kShort;
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kShort)));
  EXPECT_GE(this->now(), deadline - 0.001);
  EXPECT_THAT(this->events_, ElementsAre("timer"));
}

TYPED_TEST(NSRunLoopContract, APassEndsWithItsLastTimerWhenNothingElseIsLeft) {
  this->loop_.performAfterDelay(this->note("timer"), kShort);
  const double before = this->now();
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kGenerous)));
  EXPECT_LT(this->now(), before + kGenerous);
  EXPECT_THAT(this->events_, ElementsAre("timer"));
}

TYPED_TEST(NSRunLoopContract, APassWithAPassedDateServesWhatIsReady) {
  this->loop_.performAfterDelay(this->note("timer"), 0);
  this->loop_.performBlock(this->note("block"));
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, Date{-1e300}));
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, Date{-1e300}));
  EXPECT_THAT(this->events_, testing::UnorderedElementsAre("timer", "block"));
}

TYPED_TEST(NSRunLoopContract, ATimerThatAlwaysComesBackDoesNotStarveTheOthers) {
  int fired = 0;
  std::function<void()> again = [&] {
    ++fired;
    this->loop_.performAfterDelay(again, 0);
  };
  again();
  this->loop_.performBlock(this->note("block"));
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_LT(fired, 10);
}

TYPED_TEST(NSRunLoopContract, ABlockThatAlwaysComesBackDoesNotStarveTheOthers) {
  std::function<void()> again = [&] { this->loop_.performBlock(again); };
  again();
  this->loop_.performAfterDelay(this->note("timer"), 0);
  EXPECT_TRUE(this->runUntilEvents(1));
}

TYPED_TEST(NSRunLoopContract, AnExceptionThatLeavesABlockBecomesADiagnostic) {
  this->loop_.performBlock([] { throw std::runtime_error("out of cheese"); });
  this->loop_.performAfterDelay([] { throw 7; }, 0);
  this->loop_.performBlockAndWait([] { throw std::runtime_error("no wait"); });
  this->loop_.performBlock({});
  this->loop_.performAfterDelay(this->note("last"), kShort);
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_THAT(this->diagnostics_,
              testing::UnorderedElementsAre(HasSubstr("out of cheese"), HasSubstr("unknown type"),
                                            HasSubstr("no wait"), HasSubstr("bad_function_call")));
}

TYPED_TEST(NSRunLoopContract, RunTurnsUntilStopped) {
  this->loop_.performAfterDelay(this->note("timer"), kShort);
  this->loop_.performAfterDelay([&] { this->loop_.stop(); }, 2 * kShort);
  this->loop_.run();
  EXPECT_THAT(this->events_, ElementsAre("timer"));
}

TYPED_TEST(NSRunLoopContract, StopWithoutARunHasNoEffectOnTheNext) {
  this->loop_.stop();
  this->loop_.performBlock(this->note("block"));
  this->loop_.performBlock([&] { this->loop_.stop(); });
  this->loop_.run();
  EXPECT_THAT(this->events_, ElementsAre("block"));
}

TYPED_TEST(NSRunLoopContract, RunUntilAnswersTheConditionWhenItsTimeIsUp) {
  const double deadline = this->now() + kShort;
  EXPECT_FALSE(this->loop_.runUntil([] { return false; }, kShort));
  EXPECT_GE(this->now(), deadline);
  EXPECT_TRUE(this->loop_.runUntil([] { return true; }, 0));
}

TYPED_TEST(NSRunLoopContract, RunUntilAsksAfterEachThingServed) {
  this->loop_.performBlock(this->note("first"));
  this->loop_.performBlock(this->note("second"));
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_THAT(this->events_, ElementsAre("first"));
}

}  // namespace
}  // namespace vornix::contract
