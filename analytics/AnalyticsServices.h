#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "analytics/AnalyticsConfiguration.h"
#include "analytics/HitDelivery.h"
#include "analytics/HostTexts.h"
#include "platform/desktop/NSScreen.h"
#include "platform/desktop/NSWorkspace.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/runloop/NSNotificationCenter.h"
#include "platform/system/HardwareRegistry.h"
#include "platform/system/HttpClient.h"
#include "platform/system/NSBundle.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/system/SystemClock.h"
#include "settings/VXABTester.h"
#include "settings/VXDistributedPreferences.h"

namespace vornix {

// What the tracker needs from outside. References must outlive it. Nothing is asked before it is
// needed.
struct AnalyticsServices {
  std::shared_ptr<NSUserDefaults> userDefaults;
  std::shared_ptr<VXDistributedPreferences> distributedPreferences;
  std::shared_ptr<VXABTester> abTester;
  NSWorkspace& workspace;
  NSNotificationCenter& notificationCenter;
  const NSBundle& mainBundle;
  const HardwareRegistry& hardwareRegistry;
  const NSProcessInfo& processInfo;
  const SystemClock& clock;
  // Of the main screen and of the application's main window.
  SizeProvider mainScreenSize;
  SizeProvider mainWindowSize;
  // Most preferred first; never empty.
  std::function<std::vector<std::string>()> preferredLanguages;
  std::function<AnalyticsConfiguration()> loadConfiguration;
  // Called on the main thread or a worker, for the first request of either.
  std::function<std::unique_ptr<HttpClient>(std::string certificateAuthorityFile)> makeHttpClient;
  HitDelivery::DispatchOnMainQueue dispatchOnMainQueue;
};

// This process's own: a program without windows, and "Analytics.plist" of its bundle.
[[nodiscard]] AnalyticsServices processAnalyticsServices();

}  // namespace vornix
