#include "platform/desktop/NSUserNotificationCenter.h"

#include "platform/base/Diagnostics.h"

namespace vornix {

NSUserNotificationCenter::NSUserNotificationCenter(UserNotificationService& service)
    : service_(service) {}

NSUserNotificationCenter::~NSUserNotificationCenter() {
  if (delegate_ != nullptr) {
    service_.setActivationHandler({});
  }
}

NSUserNotificationCenter& NSUserNotificationCenter::defaultUserNotificationCenter() {
  static auto& center = *new NSUserNotificationCenter(sharedUserNotificationService());
  return center;
}

void NSUserNotificationCenter::setDelegate(NSUserNotificationCenterDelegate* delegate) {
  delegate_ = delegate;
  if (delegate_ == nullptr) {
    service_.setActivationHandler({});
    return;
  }
  service_.setActivationHandler([this](const NSUserNotification& notification) {
    delegate_->userNotificationCenterDidActivateNotification(*this, notification);
  });
}

void NSUserNotificationCenter::deliverNotification(const NSUserNotification& notification) {
  if (delegate_ != nullptr &&
      !delegate_->userNotificationCenterShouldPresentNotification(*this, notification)) {
    return;
  }
  if (const auto error = service_.deliver(notification)) {
    reportDiagnostic("The notification cannot be shown: " + error->localizedDescription);
  }
}

std::vector<NSUserNotification> NSUserNotificationCenter::displayedNotifications() {
  return service_.displayedNotifications();
}

void NSUserNotificationCenter::removeAllDisplayedNotifications() {
  service_.removeAllDisplayedNotifications();
}

}  // namespace vornix
