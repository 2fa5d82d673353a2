#include "agent/AppDelegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/agent/AgentWorld.h"

namespace vornix::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(AppDelegateStart, StartsOnlyTheClockWhenThereIsNoDate) {
  AgentWorld world;
  world.start();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(world.clock.now()));
  EXPECT_THAT(world.preferences.synchronized(), ElementsAre(std::string(kAgentDomain), "*"));
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
  EXPECT_THAT(world.log.messages(),
              ElementsAre("Something went wrong: scheduler date is not set. Setting it to now."));
  EXPECT_THAT(world.log.messages(LogLevelDebug), SizeIs(1));
}

TEST(AppDelegateStart, SchedulesASecondEndAfterTenSecondsWhenThereIsNoDate) {
  AgentWorld world;
  world.start();
  world.pass(9.9);
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
  world.pass(0.2);
  EXPECT_THAT(world.journal, ElementsAre("terminate", "terminate"));
}

TEST(AppDelegateStart, LeavesPreferencesUntouchedByTheMigrationWhenNoDomainHasADate) {
  AgentWorld world;
  world.delegate->migratePreferencesFromOldBundleID();
  EXPECT_EQ(world.preferences.writes(), 0);
}

TEST(AppDelegateStart, CopiesADateThatOnlyTheFormerDomainHas) {
  AgentWorld world;
  const Date former{123456789.123456789};
  world.set(kDateKey, former, kFormerDomain);
  world.start();
  EXPECT_EQ(world.stored(kDateKey, kFormerDomain), Value(former));
  EXPECT_NE(world.stored(kDateKey, kAgentDomain), std::nullopt);
}

TEST(AppDelegateStart, CopiesTheFormerValueUnchanged) {
  AgentWorld world;
  const Date former{123456789.123456789};
  world.set(kDateKey, former, kFormerDomain);
  world.delegate->migratePreferencesFromOldBundleID();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(former));
  EXPECT_THAT(world.preferences.synchronized(), IsEmpty());
}

TEST(AppDelegateStart, DoesNotMigrateWhenTheMainApplicationHasADate) {
  AgentWorld world;
  world.set(kDateKey, Date{1.0}, kFormerDomain);
  world.set(kDateKey, Date{2.0}, kMainDomain);
  world.delegate->migratePreferencesFromOldBundleID();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), std::nullopt);
  EXPECT_EQ(world.delegate->lastNotificationDate(), Date{2.0});
}

TEST(AppDelegateStart, MigratesAgainOnlyWhenTheDateIsGone) {
  AgentWorld world;
  world.set(kDateKey, Date{1.0}, kFormerDomain);
  world.delegate->migratePreferencesFromOldBundleID();
  const int writes = world.preferences.writes();
  world.delegate->migratePreferencesFromOldBundleID();
  EXPECT_EQ(world.preferences.writes(), writes);
}

TEST(AppDelegateStart, NeverReachesTheDecisionWhenAClickStartedIt) {
  AgentWorld world;
  world.startByClick();
  world.pass(5000);
  EXPECT_THAT(world.log.messages(), IsEmpty());
  EXPECT_THAT(world.journal, ElementsAre("remove notifications", "track Notification Clicked",
                                         "launch scheduled 0"));
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), std::nullopt);
}

TEST(AppDelegateStart, MigratesBeforeItHandlesAClick) {
  AgentWorld world;
  world.set(kDateKey, Date{1.0}, kFormerDomain);
  world.startByClick();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(Date{1.0}));
}

TEST(AppDelegateStart, TreatsAValueThatIsNoDateAsMissingAndSaysSo) {
  AgentWorld world;
  world.set(kDateKey, "yesterday", kAgentDomain);
  world.start();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(world.clock.now()));
  EXPECT_THAT(world.log.messages(LogLevelError), testing::Not(IsEmpty()));
}

TEST(AppDelegateDate, IsReadOnceThereIsOneAndThenKept) {
  AgentWorld world;
  EXPECT_EQ(world.delegate->lastNotificationDate(), std::nullopt);
  world.set(kDateKey, Date{5.0}, kAgentDomain);
  EXPECT_EQ(world.delegate->lastNotificationDate(), Date{5.0});
  world.set(kDateKey, Date{6.0}, kAgentDomain);
  EXPECT_EQ(world.delegate->lastNotificationDate(), Date{5.0});
  world.delegate->setLastNotificationDate(std::nullopt);
  EXPECT_EQ(world.delegate->lastNotificationDate(), Date{6.0});
}

TEST(AppDelegateDefaults, ReadTheMainApplicationsDomainBelowTheirOwnAndWriteTheirOwn) {
  AgentWorld world;
  world.set("SchedulerPeriod", 3, kMainDomain);
  const auto defaults = world.delegate->userDefaults();
  EXPECT_EQ(defaults->objectForKey("SchedulerPeriod"), Value(3));
  defaults->setObject(5, "SchedulerPeriod");
  EXPECT_EQ(defaults->objectForKey("SchedulerPeriod"), Value(5));
  EXPECT_EQ(world.stored("SchedulerPeriod", kAgentDomain), Value(5));
  EXPECT_EQ(world.stored("SchedulerPeriod", kMainDomain), Value(3));
}

TEST(AppDelegateDefaults, StayTheSameUntilReplaced) {
  AgentWorld world;
  const auto first = world.delegate->userDefaults();
  EXPECT_EQ(first, world.defaults);
  EXPECT_EQ(world.delegate->userDefaults(), first);
  const auto other =
      std::make_shared<NSUserDefaults>("com.example.other", world.preferences, world.localCenter);
  world.delegate->setUserDefaults(other);
  EXPECT_EQ(world.delegate->userDefaults(), other);
  world.set("SchedulerPeriod", 3, kMainDomain);
  EXPECT_EQ(other->objectForKey("SchedulerPeriod"), std::nullopt);
}

TEST(AppDelegateEnd, IsAskedOfTheApplicationInTheDelegatesName) {
  AgentWorld world;
  world.delegate->terminate();
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
  EXPECT_EQ(world.application.lastSender, world.delegate.get());
}

}  // namespace
}  // namespace vornix::tests
