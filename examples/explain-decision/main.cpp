// Prints what the agent would decide now, and why, from the same preferences and clock.
#include <cstdio>

#include "agent/ScheduleSettings.h"
#include "platform/runloop/NSNotificationCenter.h"

int main() {
  using namespace vornix;
  NSUserDefaults defaults(std::string(kSchedulerDomain), sharedPreferencesStore(),
                          NSNotificationCenter::defaultCenter());
  defaults.addSuiteNamed(kMainApplicationDomain);
  const ScheduleInput input =
      scheduleInputFor(storedNotificationDate(defaults), defaults, sharedSystemClock());
  std::puts(explainSchedule(input, decideSchedule(input)).c_str());
  return 0;
}
