#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/base/NSError.h"
#include "platform/desktop/NSUserNotification.h"

namespace vornix {

// The desktop's notifications of this application, those of its earlier runs included. Main thread.
class UserNotificationService {
 public:
  using ActivationHandler = std::function<void(const NSUserNotification&)>;

  virtual ~UserNotificationService() = default;

  // Hands the notification over; it stays on screen after this process has ended. An error says in
  // plain words why nothing can be shown.
  [[nodiscard]] virtual std::optional<NSError> deliver(const NSUserNotification& notification) = 0;
  // Those shown or waiting to be shown. Empty when nothing can show any; asking starts nothing.
  [[nodiscard]] virtual std::vector<NSUserNotification> displayedNotifications() = 0;
  virtual void removeAllDisplayedNotifications() = 0;
  // Called for each click on a notification while this process runs, on the main thread.
  virtual void setActivationHandler(ActivationHandler handler) = 0;
  // The notification whose click started this process, none for any other start. Asked once, before
  // the main loop runs; may wait up to 2 seconds when the start came from the desktop.
  [[nodiscard]] virtual std::optional<NSUserNotification> launchNotification() = 0;
};

// Does nothing until first used. Shared by the process, never destroyed.
[[nodiscard]] UserNotificationService& sharedUserNotificationService();

}  // namespace vornix
