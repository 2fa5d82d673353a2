#include "analytics/AnalyticsServices.h"

#include "logging/GTMLogger.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {
namespace {

AnalyticsConfiguration configurationOfMainBundle() {
  return analyticsConfigurationFromPropertyList(
      NSBundle::mainBundle().propertyListNamed("Analytics.plist"),
      [](std::string_view complaint) { GTMLogger::sharedLogger()->logError("%@", complaint); });
}

}  // namespace

AnalyticsServices processAnalyticsServices() {
  return {.userDefaults = NSUserDefaults::standardUserDefaults(),
          .distributedPreferences = VXDistributedPreferences::sharedInstance(),
          .abTester = VXABTester::sharedTester(),
          .workspace = NSWorkspace::sharedWorkspace(),
          .notificationCenter = NSNotificationCenter::defaultCenter(),
          .mainBundle = NSBundle::mainBundle(),
          .hardwareRegistry = sharedHardwareRegistry(),
          .processInfo = NSProcessInfo::processInfo(),
          .clock = sharedSystemClock(),
          .mainScreenSize = [] { return NSScreen::screens().mainScreenSize(); },
          .mainWindowSize = noWindow,
          .preferredLanguages = [] { return preferredLanguages(); },
          .loadConfiguration = configurationOfMainBundle,
          .makeHttpClient = makeHttpClient,
          .dispatchOnMainQueue = dispatchAsyncOnMainQueue};
}

}  // namespace vornix
