#include "tests/fakes/FakeUserNotificationService.h"

namespace vornix {

fakes::FakeUserNotificationService& fakes::processUserNotifications() {
  static auto& service = *new FakeUserNotificationService;
  return service;
}

UserNotificationService& sharedUserNotificationService() {
  return fakes::processUserNotifications();
}

}  // namespace vornix
