#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/base/NSObject.h"
#include "platform/desktop/NSUserNotification.h"
#include "platform/preferences/PreferencesStore.h"
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
  // The preferences must outlive the application.
  explicit NSApplication(PreferencesStore& preferences = sharedPreferencesStore());

  [[nodiscard]] static NSApplication& sharedApplication();

  // Posts `NSApplicationWillTerminateNotification`, makes preferences durable, flushes output and
  // ends the process with status 0 without returning, each once and in this order. Called again
  // meanwhile, by an observer or on request from outside, it returns. A test double returns instead
  // of ending the process.
  virtual void terminate(const NSObject* sender);

  [[nodiscard]] std::string_view className() const override { return "NSApplication"; }

 private:
  PreferencesStore& preferences_;
  bool isTerminating_ = false;
};

// Asks for the launch information, makes the delegate, posts
// `NSApplicationDidFinishLaunchingNotification`, then runs the main loop. The delegate observes the
// announcement before everything that was registered since the call; what registers during the
// announcement does not get it. "-Key value" arguments become preferences of this run. SIGTERM,
// SIGINT and SIGHUP end the application as `terminate` does, also while a loop is nested, and at
// the start of the main loop when they came before it. Does not return in practice.
int NSApplicationMain(int argc, char** argv,
                      const std::function<std::shared_ptr<NSApplicationDelegate>()>& makeDelegate);

}  // namespace vornix
