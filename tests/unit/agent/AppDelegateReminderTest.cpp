#include "agent/AppDelegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/agent/AgentWorld.h"

namespace vornix::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(AppDelegateReminder, RecordsTheDateInItsOwnDomainWithoutForcingItToDisk) {
  AgentWorld world;
  world.setLastDate(1209600);
  world.start();
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(world.clock.now()));
  EXPECT_THAT(world.preferences.synchronized(), IsEmpty());
  EXPECT_NE(world.delegate->lastNotificationDate(), world.clock.now());
}

struct FullScanRow {
  // None: the main application has stored nothing.
  std::optional<Value> stored;
  bool asksForScan;
};

const FullScanRow kFullScanRows[] = {{true, true},  {false, false},          {1, true},
                                     {"YES", true}, {std::nullopt, false},   {0, false},
                                     {"NO", false}, {Value(Array{1}), false}};

TEST(AppDelegateReminder, CarriesTheTextOfAScanOnlyWhereAFullScanIsChosen) {
  for (const auto& [stored, asksForScan] : kFullScanRows) {
    AgentWorld world;
    if (stored) world.set("SchedulerShouldStartFullScan", *stored, kMainDomain);
    world.delegate->performScheduledTask();
    ASSERT_EQ(world.notifications.displayed.size(), 1U);
    const NSUserNotification& shown = world.notifications.displayed.front();
    EXPECT_EQ(shown.title, "NotificationsTitle_RunSomeCleanup");
    EXPECT_EQ(shown.informativeText, asksForScan ? "NotificationDescription_RunScan"
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
  EXPECT_FALSE(world.delegate->hasVisibleNotifications());
  world.notifications.displayed.emplace_back();
  EXPECT_TRUE(world.delegate->hasVisibleNotifications());
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
  EXPECT_TRUE(world.delegate->isVNXRunning());
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

TEST(AppDelegateClick, AsksForAScanOnlyWhereAFullScanIsChosen) {
  for (const auto& [stored, asksForScan] : kFullScanRows) {
    AgentWorld world;
    if (stored) world.set("SchedulerShouldStartFullScan", *stored, kMainDomain);
    world.startByClick();
    EXPECT_EQ(world.journal.back(), asksForScan ? "launch scheduledScan 0" : "launch scheduled 0");
  }
}

TEST(AppDelegateClick, MayMeetTheEndOfTheGraceWhileTheLaunchTakesItsTime) {
  AgentWorld world;
  world.setLastDate(1209600);
  world.start();
  world.whileLaunching = [&] { world.pass(11); };
  world.notifications.click(world.notifications.displayed.front());
  ASSERT_GE(world.journal.size(), 2U);
  EXPECT_EQ(world.journal[world.journal.size() - 2], "launch scheduled 0");
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
