#include "tests/fakes/FakeUserNotificationService.h"

namespace vornix::fakes {

std::optional<NSError> FakeUserNotificationService::deliver(
    const NSUserNotification& notification) {
  delivered.push_back(notification);
  if (!failure) displayed.push_back(notification);
  return failure;
}

void FakeUserNotificationService::removeAllDisplayedNotifications() {
  ++removals;
  displayed.clear();
}

std::optional<NSUserNotification> FakeUserNotificationService::launchNotification() {
  ++launchQuestions;
  return launch;
}

void FakeUserNotificationService::activate(const NSUserNotification& notification) {
  if (handler_) handler_(notification);
}

}  // namespace vornix::fakes
