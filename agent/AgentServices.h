#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Value.h"
#include "platform/desktop/NSApplication.h"
#include "platform/desktop/NSUserNotificationCenter.h"
#include "platform/desktop/NSWorkspace.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/preferences/PreferencesStore.h"
#include "platform/runloop/NSRunLoop.h"
#include "platform/system/SystemClock.h"

namespace vornix {

// Everything the delegate needs of the world. What only a due reminder or a click needs is asked
// for when it is needed, so that the usual run never builds it. All outlive the delegate.
struct AgentServices {
  std::function<std::shared_ptr<NSUserDefaults>()> standardUserDefaults;
  PreferencesStore& preferences;
  const SystemClock& clock;
  NSRunLoop& runLoop;
  NSApplication& application;
  std::function<NSUserNotificationCenter&()> notificationCenter;
  std::function<NSWorkspace&()> workspace;
  // Reports an event of the analytics tracker.
  std::function<void(const Dictionary& parameters)> trackEvent;
  // Hands a request word and files to the main application, starting it if need be.
  std::function<void(std::string_view argument, const std::vector<std::string>& files)>
      launchMainApplication;
  std::function<std::string(std::string_view key)> localizedString;
  // The local time of day as "HH:mm".
  std::function<std::string(Date)> timeOfDay;
  // Seconds between a decision and the end of the agent.
  double terminationDelay = 10;
};

// The running process's own.
[[nodiscard]] AgentServices processAgentServices();

}  // namespace vornix
