#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/base/Date.h"

namespace vornix {

// What a run of the agent decides from.
struct ScheduleInput {
  // Of the last reminder; none before the first start.
  std::optional<Date> lastNotificationDate;
  // As the main application stores it: 1 to 6, anything else means two weeks.
  std::int64_t periodCode = 0;
  Date now;
  // Seconds that the machine has been up.
  double systemUptime = 0;
};

enum class ScheduleAction {
  // No date yet: the clock starts, nobody is reminded.
  StartClock,
  // The period has not passed.
  Wait,
  RemindNow,
  // Due, but the machine has only just started.
  RemindLater,
};

struct ScheduleDecision {
  ScheduleAction action = ScheduleAction::StartClock;
  // Seconds of the chosen period.
  double period = 0;
  // When the reminder is or was due; none without a last date.
  std::optional<Date> dueDate;
};

inline constexpr double kStartUpThreshold = 1200;
inline constexpr double kStartUpPostponement = 1200;

// Seconds of the period that a code stands for.
[[nodiscard]] double schedulePeriodForCode(std::int64_t code);

// What to do and why. Depends on nothing but its input.
[[nodiscard]] ScheduleDecision decideSchedule(const ScheduleInput& input);

// The decision in plain words, for a person.
[[nodiscard]] std::string explainSchedule(const ScheduleInput& input,
                                          const ScheduleDecision& decision);

}  // namespace vornix
