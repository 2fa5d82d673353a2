#include "agent/AppDelegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/agent/AgentWorld.h"

namespace vornix::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kWeek = 604800;

TEST(AppDelegateStart, StartsOnlyTheClockWhenThereIsNoDate) {
  AgentWorld world;
  world.start();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(world.clock.now()));
  EXPECT_THAT(world.preferences.synchronized(), ElementsAre(std::string(kAgentDomain)));
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
  EXPECT_THAT(world.log.messages(LogLevelDebug),
              Contains("Something went wrong: scheduler date is not set. Setting it to now."));
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

TEST(AppDelegateStart, NeverReachesTheDecisionWhenAClickStartedIt) {
  AgentWorld world;
  world.startByClick();
  world.pass(5000);
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

TEST(AppDelegateDecision, QuitsTenSecondsAfterFindingNothingDue) {
  AgentWorld world;
  world.setPeriod(1);
  world.setLastDate(kWeek - 1);
  const int writes = world.preferences.writes();
  world.start();
  EXPECT_THAT(world.journal, IsEmpty());
  EXPECT_THAT(world.log.messages(LogLevelDebug),
              Contains("Scheduler won't fire notification. Period is not passed."));
  world.pass(9.9);
  EXPECT_THAT(world.journal, IsEmpty());
  world.pass(0.2);
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
  EXPECT_EQ(world.preferences.writes(), writes);
}

TEST(AppDelegateDecision, RemindsAtOnceWithAnUptimeOfExactlyTwentyMinutes) {
  AgentWorld world;
  world.setPeriod(1);
  world.setLastDate(kWeek);
  world.clock.setSystemUptime(1200);
  world.start();
  EXPECT_THAT(world.log.messages(LogLevelDebug),
              Contains("Scheduler should fire notification now."));
  EXPECT_THAT(world.journal, ElementsAre("deliver NotificationDescription_RunSomeCleanup",
                                         "track Notification Shown"));
  world.pass(10.1);
  EXPECT_EQ(world.journal.back(), "terminate");
}

TEST(AppDelegateDecision, RemindsAFlatTwentyMinutesLaterWhenTheMachineHasJustStarted) {
  AgentWorld world;
  world.setPeriod(1);
  world.setLastDate(kWeek);
  world.clock.setSystemUptime(1199.9);
  world.start();
  EXPECT_THAT(world.log.messages(LogLevelDebug),
              Contains("Scheduler will fire notification in approx. 20 minutes."));
  world.pass(1199.9);
  EXPECT_THAT(world.journal, IsEmpty());
  world.pass(0.2);
  EXPECT_THAT(world.journal, ElementsAre("deliver NotificationDescription_RunSomeCleanup",
                                         "track Notification Shown"));
  world.pass(9.8);
  EXPECT_EQ(world.journal.size(), 2U);
  world.pass(0.3);
  EXPECT_EQ(world.journal.back(), "terminate");
  EXPECT_EQ(world.journal.size(), 3U);
}

TEST(AppDelegateDecision, TestsNeitherPeriodNorUptimeAgainWhenThePostponementEnds) {
  AgentWorld world;
  world.setPeriod(1);
  world.setLastDate(kWeek);
  world.clock.setSystemUptime(0);
  world.start();
  world.setLastDate(0);
  world.pass(1201);
  EXPECT_EQ(world.journal.front(), "deliver NotificationDescription_RunSomeCleanup");
}

TEST(AppDelegateDecision, ReadsThePeriodByItsLeadingDigitsWhateverItsType) {
  struct Row {
    Value period;
    double seconds;
  };
  const Row rows[] = {{3, 2592000},   {"3", 2592000}, {"3 x", 2592000},
                      {3.9, 2592000}, {"x", 1209600}, {0, 1209600},
                      {-1, 1209600},  {7, 1209600},   {Value(Array{}), 1209600},
                      {true, 604800}};
  for (const auto& row : rows) {
    AgentWorld due;
    due.setPeriod(row.period);
    due.setLastDate(row.seconds);
    due.start();
    EXPECT_THAT(due.journal, Contains("track Notification Shown")) << row.period.description();
    AgentWorld early;
    early.setPeriod(row.period);
    early.setLastDate(row.seconds - 1);
    early.start();
    EXPECT_THAT(early.journal, IsEmpty()) << row.period.description();
  }
}

TEST(AppDelegateDecision, TakesTwoWeeksWhenNoPeriodIsStored) {
  AgentWorld world;
  world.setLastDate(1209599);
  world.start();
  EXPECT_THAT(world.journal, IsEmpty());
}

TEST(AppDelegateReminder, RecordsTheDateInItsOwnDomainWithoutForcingItToDisk) {
  AgentWorld world;
  world.setLastDate(1209600);
  world.start();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(world.clock.now()));
  EXPECT_THAT(world.preferences.synchronized(), IsEmpty());
  EXPECT_NE(world.delegate->lastNotificationDate(), world.clock.now());
}

TEST(AppDelegateReminder, CarriesTheTextsOfAScanOrOfACleanUp) {
  for (const bool fullScan : {true, false}) {
    AgentWorld world;
    world.set("SchedulerShouldStartFullScan", fullScan, kMainDomain);
    world.delegate->performScheduledTask();
    ASSERT_EQ(world.notifications.displayed.size(), 1U);
    const NSUserNotification& shown = world.notifications.displayed.front();
    EXPECT_EQ(shown.title, "NotificationsTitle_RunSomeCleanup");
    EXPECT_EQ(shown.informativeText, fullScan ? "NotificationDescription_RunScan"
                                              : "NotificationDescription_RunSomeCleanup");
    EXPECT_TRUE(shown.hasActionButton);
    EXPECT_EQ(shown.actionButtonTitle, "Launch");
    EXPECT_EQ(shown.otherButtonTitle, "Cancel");
  }
}

TEST(AppDelegateReminder, ReportsExactlyFourParameters) {
  AgentWorld world;
  world.delegate->performScheduledTask();
  ASSERT_EQ(world.events.size(), 1U);
  EXPECT_EQ(
      world.events.front(),
      (Dictionary{{"ec", "Scheduler"}, {"ea", "Notification Shown"}, {"el", "09:41"}, {"ev", 1}}));
}

TEST(AppDelegateReminder, PostsReportsAndWritesNothingWhileOneIsStillOnScreen) {
  AgentWorld world;
  world.setLastDate(1209600);
  const auto before = world.stored(kDateKey, kAgentDomain);
  world.notifications.displayed.emplace_back();
  world.start();
  EXPECT_THAT(world.journal, IsEmpty());
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), before);
  world.pass(10.1);
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
}

TEST(AppDelegateReminder, EndsAtOnceWhenTheMainApplicationRunsAndGoesOnIfTheEndReturns) {
  AgentWorld world;
  world.setLastDate(1209600);
  world.applications.run(std::string(kMainDomain));
  world.start();
  ASSERT_FALSE(world.journal.empty());
  EXPECT_EQ(world.journal.front(), "terminate");
  EXPECT_THAT(world.journal, Contains("track Notification Shown"));
  world.pass(10.1);
  EXPECT_EQ(world.journal.back(), "terminate");
}

TEST(AppDelegateReminder, IsPresentedEvenToTheFrontmostApplication) {
  AgentWorld world;
  EXPECT_TRUE(world.delegate->userNotificationCenterShouldPresentNotification(world.center, {}));
}

TEST(AppDelegateClick, ReachesTheDelegateDuringTheGrace) {
  AgentWorld world;
  world.setLastDate(1209600);
  world.start();
  ASSERT_TRUE(world.notifications.click);
  world.notifications.click(world.notifications.displayed.front());
  EXPECT_THAT(world.journal, ElementsAre("deliver NotificationDescription_RunSomeCleanup",
                                         "track Notification Shown", "remove notifications",
                                         "track Notification Clicked", "launch scheduled 0"));
  world.pass(10.1);
  EXPECT_EQ(world.journal.back(), "terminate");
}

TEST(AppDelegateClick, ReportsTheClickBeforeItLaunchesTheMainApplication) {
  AgentWorld world;
  world.startByClick();
  ASSERT_EQ(world.journal.size(), 3U);
  EXPECT_EQ(world.journal[1], "track Notification Clicked");
  EXPECT_EQ(world.journal[2], "launch scheduled 0");
  EXPECT_EQ(world.events.front(),
            (Dictionary{
                {"ec", "Scheduler"}, {"ea", "Notification Clicked"}, {"el", "09:41"}, {"ev", 1}}));
}

TEST(AppDelegateClick, AsksForTheRequestThatIsChosenAtTheTimeOfTheClick) {
  AgentWorld world;
  world.set("SchedulerShouldStartFullScan", true, kMainDomain);
  world.setLastDate(1209600);
  world.start();
  world.set("SchedulerShouldStartFullScan", false, kMainDomain);
  EXPECT_EQ(world.notifications.displayed.front().informativeText,
            "NotificationDescription_RunScan");
  world.notifications.click(world.notifications.displayed.front());
  EXPECT_EQ(world.journal.back(), "launch scheduled 0");
  world.set("SchedulerShouldStartFullScan", true, kMainDomain);
  world.startByClick();
  EXPECT_EQ(world.journal.back(), "launch scheduledScan 0");
}

TEST(AppDelegateClick, WritesNoPreferencesAndSchedulesNoEnd) {
  AgentWorld world;
  world.set(kDateKey, Date{1.0}, kAgentDomain);
  const int writes = world.preferences.writes();
  world.startByClick();
  world.pass(100000);
  EXPECT_EQ(world.preferences.writes(), writes);
  EXPECT_EQ(world.journal.size(), 3U);
}

}  // namespace
}  // namespace vornix::tests
