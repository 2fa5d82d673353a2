#include "agent/ScheduleSettings.h"

#include <cmath>

#include "logging/GTMLogger.h"
#include "settings/PreferenceKey.h"

namespace vornix {

std::optional<Date> storedNotificationDate(const NSUserDefaults& defaults) {
  const auto stored = defaults.objectForKey(kLastNotificationDateKey);
  if (!stored) return std::nullopt;
  const Date* date = stored->as<Date>();
  if (date != nullptr && !std::isnan(date->timeIntervalSinceReferenceDate)) return *date;
  GTMLogger::sharedLogger()->logError("\"%@\" holds no date but \"%@\"; it counts as missing.",
                                      kLastNotificationDateKey, *stored);
  return std::nullopt;
}

ScheduleInput scheduleInputFor(std::optional<Date> lastNotificationDate,
                               const NSUserDefaults& defaults, const SystemClock& clock) {
  ScheduleInput input;
  input.lastNotificationDate = lastNotificationDate;
  if (!lastNotificationDate) return input;
  input.now = clock.now();
  const auto code = defaults.objectForKey(PreferenceKey::SchedulerPeriod);
  input.periodCode = code ? code->integerValue() : 0;
  input.systemUptime = clock.systemUptime();
  return input;
}

}  // namespace vornix
