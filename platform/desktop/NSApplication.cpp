#include "platform/desktop/NSApplication.h"

#include <cstdio>
#include <string>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/desktop/ProcessLifetime.h"
#include "platform/desktop/UserNotificationService.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {
namespace {

// Ends the application when that was requested from outside. It has nothing to wait on: the request
// wakes the loop, which then asks every source.
class TerminationSource final : public RunLoopSource {
 public:
  [[nodiscard]] WaitHandle handle() const override { return {}; }
  [[nodiscard]] std::optional<double> timeout() const override {
    return !isServed_ && terminationWasRequested() ? std::optional(0.0) : std::nullopt;
  }
  void perform() override {
    isServed_ = true;
    NSApplication::sharedApplication().terminate(nullptr);
  }

 private:
  // Observers of the end may run the loop again, which has to wait then.
  bool isServed_ = false;
};

class Flagged {
 public:
  explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }
  Flagged(const Flagged&) = delete;
  Flagged& operator=(const Flagged&) = delete;
  ~Flagged() { flag_ = false; }

 private:
  bool& flag_;
};

void takeArguments(int argc, char** argv) {
  if (argc <= 1) return;
  NSUserDefaults::standardUserDefaults()->setArguments(
      std::vector<std::string>(argv + 1, argv + argc));
}

}  // namespace

NSApplication::NSApplication(PreferencesStore& preferences) : preferences_(preferences) {}

NSApplication& NSApplication::sharedApplication() {
  static const auto& application =
      *new std::shared_ptr<NSApplication>(std::make_shared<NSApplication>());
  return *application;
}

void NSApplication::terminate(const NSObject* /*sender*/) {
  if (isTerminating_) return;
  const Flagged terminating(isTerminating_);
  NSNotificationCenter::defaultCenter().postNotification(
      {.name = std::string(NSApplicationWillTerminateNotification),
       .object = weak_from_this().lock(),
       .userInfo = {}});
  preferences_.synchronizeAll();
  std::fflush(nullptr);
  endProcess(0);
}

int NSApplicationMain(int argc, char** argv,
                      const std::function<std::shared_ptr<NSApplicationDelegate>()>& makeDelegate) {
  const auto loop = NSRunLoop::mainRunLoop();
  watchTerminationRequests(loop->eventWaiter());
  const auto termination = std::make_shared<TerminationSource>();
  loop->addSource(termination);
  takeArguments(argc, argv);
  const ApplicationLaunchInformation information{
      .launchUserNotification = sharedUserNotificationService().launchNotification()};

  auto& center = NSNotificationCenter::defaultCenter();
  std::shared_ptr<NSApplicationDelegate> delegate;
  const auto observation =
      center.addObserver(NSApplicationDidFinishLaunchingNotification, [&](const NSNotification&) {
        if (delegate) delegate->applicationDidFinishLaunching(information);
      });
  delegate = makeDelegate();
  if (!delegate) reportDiagnostic("The application has no delegate");
  center.postNotification({.name = std::string(NSApplicationDidFinishLaunchingNotification),
                           .object = NSApplication::sharedApplication().shared_from_this(),
                           .userInfo = {}});
  center.removeObserver(observation);

  loop->run();
  loop->removeSource(*termination);
  return 0;
}

}  // namespace vornix
