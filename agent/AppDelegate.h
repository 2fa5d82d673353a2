#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "agent/AgentServices.h"

namespace vornix {

// The agent: one decision a start, or one click handled. Main thread.
class AppDelegate final : public NSObject,
                          public NSApplicationDelegate,
                          public NSUserNotificationCenterDelegate {
 public:
  [[nodiscard]] static std::shared_ptr<AppDelegate> create(AgentServices services);

  // Handles the click that started the agent, or makes the schedule decision; never both.
  void applicationDidFinishLaunching(const ApplicationLaunchInformation& information) override;

  // The agent's own preferences with the main application's below them: reads search both, writes
  // go to the agent's.
  [[nodiscard]] const std::shared_ptr<NSUserDefaults>& userDefaults();
  void setUserDefaults(std::shared_ptr<NSUserDefaults> defaults);

  // Read from the preferences once there is one, then kept: later writes are not seen. None when
  // there is no usable date.
  [[nodiscard]] std::optional<Date> lastNotificationDate();
  void setLastNotificationDate(std::optional<Date> date);

  // Copies the reminder date of the agent's former identifier, unless there is one already.
  void migratePreferencesFromOldBundleID();

  void performScheduledTaskIfNeeded();
  // Reminds, unless a reminder is still on screen; ends the agent when the main application runs.
  void performScheduledTask();
  void performScheduledTaskAndTerminate();

  [[nodiscard]] bool isVNXRunning();
  [[nodiscard]] bool hasVisibleNotifications();
  // Every ending of the agent goes through here.
  void terminate();

  bool userNotificationCenterShouldPresentNotification(
      NSUserNotificationCenter& center, const NSUserNotification& notification) override;
  void userNotificationCenterDidActivateNotification(
      NSUserNotificationCenter& center, const NSUserNotification& notification) override;

  [[nodiscard]] std::string_view className() const override { return "AppDelegate"; }

 private:
  explicit AppDelegate(AgentServices services);

  void startClock();
  void performAfterDelay(void (AppDelegate::*operation)(), double seconds);
  [[nodiscard]] NSUserNotification reminder(bool fullScan);
  void trackSchedulerEvent(std::string_view action);

  AgentServices services_;
  std::shared_ptr<NSUserDefaults> userDefaults_;
  std::optional<Date> lastNotificationDate_;
};

}  // namespace vornix
