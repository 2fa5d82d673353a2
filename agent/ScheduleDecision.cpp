#include "agent/ScheduleDecision.h"

#include <array>
#include <cmath>

#include "platform/base/Description.h"
#include "platform/base/Format.h"

namespace vornix {
namespace {

constexpr double kDay = 86400;
constexpr double kTwoWeeks = 14 * kDay;
constexpr std::array<double, 6> kPeriods{7 * kDay,  kTwoWeeks,  30 * kDay,
                                         90 * kDay, 180 * kDay, 365 * kDay};

}  // namespace

double schedulePeriodForCode(std::int64_t code) {
  // Unsigned, so that zero and negative codes are as far out of range as large ones.
  const std::uint64_t index = static_cast<std::uint64_t>(code) - 1;
  return index < kPeriods.size() ? kPeriods[index] : kTwoWeeks;
}

ScheduleDecision decideSchedule(const ScheduleInput& input) {
  const double period = schedulePeriodForCode(input.periodCode);
  if (!input.lastNotificationDate) return {ScheduleAction::StartClock, period, std::nullopt};
  const Date due = input.lastNotificationDate->addingTimeInterval(period);
  if (!(input.now >= due)) return {ScheduleAction::Wait, period, due};
  const bool settled = input.systemUptime >= kStartUpThreshold;
  return {settled ? ScheduleAction::RemindNow : ScheduleAction::RemindLater, period, due};
}

std::string explainSchedule(const ScheduleInput& input, const ScheduleDecision& decision) {
  const double days = decision.period / kDay;
  if (decision.action == ScheduleAction::StartClock) {
    return "Start the clock: no reminder was ever shown, so the first period begins now.";
  }
  const std::string last = text::describeDate(*input.lastNotificationDate);
  const std::string due = text::describeDate(*decision.dueDate);
  if (decision.action == ScheduleAction::Wait) {
    return text::format(
        "Wait: the last reminder was on %@ and the period is %.0f days, so the next one is due on "
        "%@.",
        last, days, due);
  }
  const std::string reason = text::format(
      "the last reminder was on %@ and the period of %.0f days passed on %@", last, days, due);
  if (decision.action == ScheduleAction::RemindNow) {
    return text::format("Remind now: %@, and the machine has been up for %.0f seconds.", reason,
                        std::floor(input.systemUptime));
  }
  return text::format(
      "Remind in %.0f minutes: %@, but the machine has been up for only %.0f seconds.",
      kStartUpPostponement / 60, reason, std::floor(input.systemUptime));
}

}  // namespace vornix
