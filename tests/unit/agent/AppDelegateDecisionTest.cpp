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

TEST(AppDelegateDecision, QuitsTenSecondsAfterFindingNothingDue) {
  AgentWorld world;
  world.setPeriod(1);
  world.setLastDate(kWeek - 1);
  const int writes = world.preferences.writes();
  world.start();
  EXPECT_THAT(world.journal, IsEmpty());
  EXPECT_THAT(world.log.messages(LogLevelDebug),
              ElementsAre("Scheduler won't fire notification. Period is not passed."));
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
              ElementsAre("Scheduler should fire notification now."));
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
              ElementsAre("Scheduler will fire notification in approx. 20 minutes."));
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
  AgentWorld early;
  early.setLastDate(1209599);
  early.start();
  EXPECT_THAT(early.journal, IsEmpty());
  AgentWorld due;
  due.setLastDate(1209600);
  due.start();
  EXPECT_THAT(due.journal, Contains("track Notification Shown"));
}

TEST(AppDelegateDecision, WaitsWhenTheLastReminderLiesInTheFuture) {
  AgentWorld world;
  world.setPeriod(1);
  world.setLastDate(-86400);
  const auto before = world.stored(kDateKey, kAgentDomain);
  world.start();
  world.pass(10.1);
  EXPECT_THAT(world.journal, ElementsAre("terminate"));
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), before);
}

TEST(AppDelegateDecision, IsMadeOnTheMainApplicationsDateWhereTheAgentHasNone) {
  AgentWorld world;
  world.set(kDateKey, world.clock.now().addingTimeInterval(-1209600), kMainDomain);
  world.start();
  EXPECT_THAT(world.journal, Contains("track Notification Shown"));
  EXPECT_EQ(world.stored(kDateKey, kAgentDomain), Value(world.clock.now()));
}

}  // namespace
}  // namespace vornix::tests
