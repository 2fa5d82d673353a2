#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/base/NSObject.h"
#include "platform/desktop/NSUserNotification.h"
#include "platform/runloop/NSNotificationCenter.h"

namespace vornix {

// What the application was started with. `launchUserNotification` is set when the person's click on
// one of its notifications started it (the platform's `NSApplicationLaunchUserNotificationKey`).
struct ApplicationLaunchInformation {
  std::optional<NSUserNotification> launchUserNotification;
};

class NSApplicationDelegate {
 public:
  virtual ~NSApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching(const ApplicationLaunchInformation& information) = 0;
};

// The application and its main loop. Main thread.
class NSApplication : public NSObject {
 public:
  [[nodiscard]] static NSApplication& sharedApplication();

  // Posts `NSApplicationWillTerminateNotification`, makes preferences durable, flushes output and
  // ends the process with status 0 without returning. A test double returns.
  virtual void terminate(const NSObject* sender);

  [[nodiscard]] std::string_view className() const override { return "NSApplication"; }
};

// Makes the delegate, tells it that launching has finished, then runs the main loop. SIGTERM,
// SIGINT and SIGHUP end the application as `terminate` does. Does not return in practice.
int NSApplicationMain(int argc, char** argv,
                      const std::function<std::shared_ptr<NSApplicationDelegate>()>& makeDelegate);

}  // namespace vornix
