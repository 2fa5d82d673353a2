#include "agent/AppDelegate.h"

#include <utility>

#include "agent/ScheduleSettings.h"
#include "analytics/AnalyticsParameter.h"
#include "foundation/NSWorkspace+LaunchedApplications.h"
#include "logging/GTMLogger.h"
#include "platform/preferences/CFPreferences.h"
#include "settings/PreferenceKey.h"

namespace vornix {

std::shared_ptr<AppDelegate> AppDelegate::create(AgentServices services) {
  return std::shared_ptr<AppDelegate>(new AppDelegate(std::move(services)));
}

AppDelegate::AppDelegate(AgentServices services) : services_(std::move(services)) {}

void AppDelegate::applicationDidFinishLaunching(const ApplicationLaunchInformation& information) {
  migratePreferencesFromOldBundleID();
  if (information.launchUserNotification) {
    userNotificationCenterDidActivateNotification(services_.notificationCenter(),
                                                  *information.launchUserNotification);
    return;
  }
  performScheduledTaskIfNeeded();
}

const std::shared_ptr<NSUserDefaults>& AppDelegate::userDefaults() {
  if (!userDefaults_) {
    userDefaults_ = services_.standardUserDefaults();
    userDefaults_->addSuiteNamed(kMainApplicationDomain);
  }
  return userDefaults_;
}

void AppDelegate::setUserDefaults(std::shared_ptr<NSUserDefaults> defaults) {
  userDefaults_ = std::move(defaults);
}

std::optional<Date> AppDelegate::lastNotificationDate() {
  if (!lastNotificationDate_) lastNotificationDate_ = storedNotificationDate(*userDefaults());
  return lastNotificationDate_;
}

void AppDelegate::setLastNotificationDate(std::optional<Date> date) {
  lastNotificationDate_ = date;
}

void AppDelegate::migratePreferencesFromOldBundleID() {
  if (userDefaults()->objectForKey(kLastNotificationDateKey)) return;
  const auto former = CFPreferencesCopyAppValue(services_.preferences, kLastNotificationDateKey,
                                                kFormerSchedulerDomain);
  if (former) userDefaults()->setObject(former, kLastNotificationDateKey);
}

void AppDelegate::performScheduledTaskIfNeeded() {
  const auto logger = GTMLogger::sharedLogger();
  const ScheduleInput input =
      scheduleInputFor(lastNotificationDate(), *userDefaults(), services_.clock);
  switch (decideSchedule(input).action) {
    case ScheduleAction::StartClock:
      logger->logDebug("Something went wrong: scheduler date is not set. Setting it to now.");
      startClock();
      break;
    case ScheduleAction::Wait:
      logger->logDebug("Scheduler won't fire notification. Period is not passed.");
      break;
    case ScheduleAction::RemindNow:
      logger->logDebug("Scheduler should fire notification now.");
      performScheduledTask();
      break;
    case ScheduleAction::RemindLater:
      logger->logDebug("Scheduler will fire notification in approx. 20 minutes.");
      performAfterDelay(&AppDelegate::performScheduledTaskAndTerminate, kStartUpPostponement);
      return;
  }
  performAfterDelay(&AppDelegate::terminate, services_.terminationDelay);
}

void AppDelegate::startClock() {
  userDefaults()->setObject(services_.clock.now(), kLastNotificationDateKey);
  userDefaults()->synchronize();
  terminate();
}

void AppDelegate::performScheduledTask() {
  if (isVNXRunning()) terminate();
  if (hasVisibleNotifications()) return;
  const bool fullScan = userDefaults()->boolForKey(PreferenceKey::SchedulerShouldStartFullScan);
  NSUserNotificationCenter& center = services_.notificationCenter();
  center.setDelegate(this);
  center.deliverNotification(reminder(fullScan));
  trackSchedulerEvent("Notification Shown");
  userDefaults()->setObject(services_.clock.now(), kLastNotificationDateKey);
}

void AppDelegate::performScheduledTaskAndTerminate() {
  performScheduledTask();
  performAfterDelay(&AppDelegate::terminate, services_.terminationDelay);
}

void AppDelegate::performAfterDelay(void (AppDelegate::*operation)(), double seconds) {
  const auto self = std::static_pointer_cast<AppDelegate>(shared_from_this());
  services_.runLoop.performAfterDelay([self, operation] { (self.get()->*operation)(); }, seconds);
}

bool AppDelegate::isVNXRunning() {
  return isApplicationRunning(services_.workspace(), kMainApplicationDomain);
}

bool AppDelegate::hasVisibleNotifications() {
  return !services_.notificationCenter().displayedNotifications().empty();
}

void AppDelegate::terminate() {
  services_.application.terminate(this);
}

bool AppDelegate::userNotificationCenterShouldPresentNotification(
    NSUserNotificationCenter& /*center*/, const NSUserNotification& /*notification*/) {
  return true;
}

void AppDelegate::userNotificationCenterDidActivateNotification(
    NSUserNotificationCenter& /*center*/, const NSUserNotification& /*notification*/) {
  services_.notificationCenter().removeAllDisplayedNotifications();
  trackSchedulerEvent("Notification Clicked");
  const bool fullScan = userDefaults()->boolForKey(PreferenceKey::SchedulerShouldStartFullScan);
  services_.launchMainApplication(fullScan ? "scheduledScan" : "scheduled", {});
}

NSUserNotification AppDelegate::reminder(bool fullScan) {
  return NSUserNotification{
      .title = services_.localizedString("NotificationsTitle_RunSomeCleanup"),
      .informativeText = services_.localizedString(
          fullScan ? "NotificationDescription_RunScan" : "NotificationDescription_RunSomeCleanup"),
      .hasActionButton = true,
      .actionButtonTitle = services_.localizedString("Launch"),
      .otherButtonTitle = services_.localizedString("Cancel")};
}

void AppDelegate::trackSchedulerEvent(std::string_view action) {
  services_.trackEvent(
      {{std::string(AnalyticsParameter::ec), "Scheduler"},
       {std::string(AnalyticsParameter::ea), action},
       {std::string(AnalyticsParameter::el), services_.timeOfDay(services_.clock.now())},
       {std::string(AnalyticsParameter::ev), 1}});
}

}  // namespace vornix
