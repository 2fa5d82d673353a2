#include "agent/AgentServices.h"

#include "agent/VNXLauncher.h"
#include "analytics/VXAnalyticsTracker.h"
#include "platform/system/NSBundle.h"
#include "platform/system/NSDateFormatter.h"

namespace vornix {
namespace {

std::string localTimeOfDay(Date date) {
  const auto formatter = NSDateFormatter::formatterWithFormat("HH:mm");
  return formatter ? formatter->stringFromDate(date) : std::string();
}

}  // namespace

AgentServices processAgentServices() {
  return AgentServices{
      .standardUserDefaults = NSUserDefaults::standardUserDefaults,
      .preferences = sharedPreferencesStore(),
      .clock = sharedSystemClock(),
      .runLoop = *NSRunLoop::mainRunLoop(),
      .application = NSApplication::sharedApplication(),
      .notificationCenter = NSUserNotificationCenter::defaultUserNotificationCenter,
      .workspace = NSWorkspace::sharedWorkspace,
      .trackEvent =
          [](const Dictionary& parameters) {
            VXAnalyticsTracker::defaultTracker()->trackEventWithParameters(parameters);
          },
      .launchMainApplication =
          [](std::string_view argument, const std::vector<std::string>& files) {
            VNXLauncher::launchVNXWithArgument(argument, files);
          },
      .localizedString =
          [](std::string_view key) {
            return NSBundle::mainBundle().localizedStringForKey(key, "", "");
          },
      .timeOfDay = localTimeOfDay};
}

}  // namespace vornix
