#pragma once

#include <optional>
#include <string_view>

#include "agent/ScheduleDecision.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/system/SystemClock.h"

namespace vornix {

inline constexpr std::string_view kSchedulerDomain = "com.orvane.Vornix3.Scheduler";
inline constexpr std::string_view kFormerSchedulerDomain = "com.orvane.Vornix-3-Scheduler";
inline constexpr std::string_view kMainApplicationDomain = "com.orvane.Vornix3";
inline constexpr std::string_view kLastNotificationDateKey = "LastSchedulerNotificationDate";

// The date of the last reminder. None when it is missing; a value that is no date counts as
// missing, with an error line in the log.
[[nodiscard]] std::optional<Date> storedNotificationDate(const NSUserDefaults& defaults);

// What the decision is made from. Without a last date nothing else is looked at.
[[nodiscard]] ScheduleInput scheduleInputFor(std::optional<Date> lastNotificationDate,
                                             const NSUserDefaults& defaults,
                                             const SystemClock& clock);

}  // namespace vornix
