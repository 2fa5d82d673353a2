#pragma once

#include <memory>
#include <vector>

#include "platform/desktop/NSUserNotification.h"
#include "platform/desktop/UserNotificationService.h"

namespace vornix {

class NSUserNotificationCenter;

class NSUserNotificationCenterDelegate {
 public:
  virtual ~NSUserNotificationCenterDelegate() = default;
  // Asked for each notification before it is shown; one that is refused is not.
  virtual bool userNotificationCenterShouldPresentNotification(
      NSUserNotificationCenter& center, const NSUserNotification& notification) = 0;
  // A click on the notification's body or on its action button.
  virtual void userNotificationCenterDidActivateNotification(
      NSUserNotificationCenter& center, const NSUserNotification& notification) = 0;
};

// Shows notifications and reports clicks on them. Main thread.
class NSUserNotificationCenter {
 public:
  // The service must outlive the centre.
  explicit NSUserNotificationCenter(UserNotificationService& service);
  NSUserNotificationCenter(const NSUserNotificationCenter&) = delete;
  NSUserNotificationCenter& operator=(const NSUserNotificationCenter&) = delete;
  virtual ~NSUserNotificationCenter();

  // Never destroyed.
  [[nodiscard]] static NSUserNotificationCenter& defaultUserNotificationCenter();

  // Not owned; must live until replaced. Clicks that came before are dropped.
  void setDelegate(NSUserNotificationCenterDelegate* delegate);
  // A failure is reported as one diagnostic line.
  void deliverNotification(const NSUserNotification& notification);
  [[nodiscard]] std::vector<NSUserNotification> displayedNotifications();
  void removeAllDisplayedNotifications();

 private:
  UserNotificationService& service_;
  NSUserNotificationCenterDelegate* delegate_ = nullptr;
};

}  // namespace vornix
