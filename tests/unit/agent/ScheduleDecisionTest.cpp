#include "agent/ScheduleDecision.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vornix {
namespace {

constexpr Date kLast{700000000.0};
constexpr double kLongUp = 5000;

ScheduleAction actionAfter(double seconds, std::int64_t code, double uptime = kLongUp) {
  return decideSchedule({.lastNotificationDate = kLast,
                         .periodCode = code,
                         .now = kLast.addingTimeInterval(seconds),
                         .systemUptime = uptime})
      .action;
}

TEST(ScheduleDecision, IsDueExactlyWhenThePeriodHasPassedAndNotOneSecondEarlier) {
  const std::pair<std::int64_t, double> periods[] = {{1, 604800},  {2, 1209600},  {3, 2592000},
                                                     {4, 7776000}, {5, 15552000}, {6, 31536000}};
  for (const auto& [code, seconds] : periods) {
    EXPECT_EQ(schedulePeriodForCode(code), seconds);
    EXPECT_EQ(actionAfter(seconds, code), ScheduleAction::RemindNow) << code;
    EXPECT_EQ(actionAfter(seconds - 1, code), ScheduleAction::Wait) << code;
    EXPECT_EQ(actionAfter(seconds - 1e-3, code), ScheduleAction::Wait) << code;
  }
}

TEST(ScheduleDecision, TakesTwoWeeksForEveryOtherCode) {
  for (const std::int64_t code : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{7},
                                  std::int64_t{1000000}, INT64_MIN, INT64_MAX}) {
    EXPECT_EQ(schedulePeriodForCode(code), 1209600) << code;
    EXPECT_EQ(actionAfter(1209600, code), ScheduleAction::RemindNow) << code;
    EXPECT_EQ(actionAfter(1209599, code), ScheduleAction::Wait) << code;
  }
}

TEST(ScheduleDecision, PostponesWhileTheMachineHasBeenUpForLessThanTwentyMinutes) {
  EXPECT_EQ(actionAfter(604800, 1, 0), ScheduleAction::RemindLater);
  EXPECT_EQ(actionAfter(604800, 1, 1199.9), ScheduleAction::RemindLater);
  EXPECT_EQ(actionAfter(604800, 1, 1200), ScheduleAction::RemindNow);
}

TEST(ScheduleDecision, DoesNotLookAtTheUptimeWhenNothingIsDue) {
  EXPECT_EQ(actionAfter(1, 1, 0), ScheduleAction::Wait);
}

TEST(ScheduleDecision, StartsTheClockWithoutALastDate) {
  const auto decision = decideSchedule({.lastNotificationDate = std::nullopt,
                                        .periodCode = 3,
                                        .now = kLast,
                                        .systemUptime = kLongUp});
  EXPECT_EQ(decision.action, ScheduleAction::StartClock);
  EXPECT_FALSE(decision.dueDate);
}

TEST(ScheduleDecision, WaitsForThePeriodAfterADateInTheFuture) {
  EXPECT_EQ(actionAfter(-86400, 1), ScheduleAction::Wait);
  EXPECT_EQ(actionAfter(-1e12, 1), ScheduleAction::Wait);
}

TEST(ScheduleDecision, SaysWhenTheReminderIsDue) {
  const auto decision = decideSchedule({.lastNotificationDate = kLast,
                                        .periodCode = 3,
                                        .now = kLast.addingTimeInterval(5),
                                        .systemUptime = kLongUp});
  EXPECT_EQ(decision.period, 2592000);
  EXPECT_EQ(decision.dueDate, kLast.addingTimeInterval(2592000));
}

TEST(ScheduleDecision, NeverRemindsOnDatesThatCannotBeCompared) {
  const double nan = std::nan("");
  EXPECT_EQ(decideSchedule({Date{nan}, 1, kLast, kLongUp}).action, ScheduleAction::Wait);
  EXPECT_EQ(decideSchedule({kLast, 1, Date{nan}, kLongUp}).action, ScheduleAction::Wait);
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(decideSchedule({Date{infinity}, 1, kLast, kLongUp}).action, ScheduleAction::Wait);
}

TEST(ScheduleDecision, ExplainsItselfInPlainWords) {
  const auto explain = [](const ScheduleInput& input) {
    return explainSchedule(input, decideSchedule(input));
  };
  EXPECT_EQ(explain({std::nullopt, 1, kLast, kLongUp}),
            "Start the clock: no reminder was ever shown, so the first period begins now.");
  EXPECT_EQ(explain({kLast, 1, kLast, kLongUp}),
            "Wait: the last reminder was on 2023-03-08 20:26:40 +0000 and the period is 7 days, so "
            "the next one is due on 2023-03-15 20:26:40 +0000.");
  EXPECT_EQ(explain({kLast, 1, kLast.addingTimeInterval(700000), kLongUp}),
            "Remind now: the last reminder was on 2023-03-08 20:26:40 +0000 and the period of 7 "
            "days passed on 2023-03-15 20:26:40 +0000, and the machine has been up for 5000 "
            "seconds.");
  EXPECT_EQ(explain({kLast, 1, kLast.addingTimeInterval(700000), 60}),
            "Remind in 20 minutes: the last reminder was on 2023-03-08 20:26:40 +0000 and the "
            "period of 7 days passed on 2023-03-15 20:26:40 +0000, but the machine has been up for "
            "only 60 seconds.");
}

}  // namespace
}  // namespace vornix
