#pragma once

#include <utility>

#include "platform/desktop/UserNotificationService.h"

namespace vornix::fakes {

// A desktop that shows notifications to nobody and is clicked by the test.
class FakeUserNotificationService final : public UserNotificationService {
 public:
  [[nodiscard]] std::optional<NSError> deliver(const NSUserNotification& notification) override;
  [[nodiscard]] std::vector<NSUserNotification> displayedNotifications() override {
    return displayed;
  }
  void removeAllDisplayedNotifications() override;
  void setActivationHandler(ActivationHandler handler) override { handler_ = std::move(handler); }
  [[nodiscard]] std::optional<NSUserNotification> launchNotification() override;

  // The person clicks on the notification.
  void activate(const NSUserNotification& notification);

  // What `deliver` answers instead of showing.
  std::optional<NSError> failure;
  std::optional<NSUserNotification> launch;
  std::vector<NSUserNotification> delivered;
  std::vector<NSUserNotification> displayed;
  int removals = 0;
  int launchQuestions = 0;

 private:
  ActivationHandler handler_;
};

// The one that `sharedUserNotificationService` answers on the fake platform.
FakeUserNotificationService& processUserNotifications();

}  // namespace vornix::fakes
