#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/desktop/UserNotificationService.h"
#include "platform/linux/bus/SessionBus.h"
#include "platform/linux/desktop/AgentBusPresence.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {

// The agent's side of the notification centre. Connects to the bus only to post, to ask, or when
// the bus has started this process.
class BusUserNotificationService final : public UserNotificationService {
 public:
  // The bus must outlive the service. `endApplication` is called when this process was started for
  // a click and is no longer needed: a newer one has taken over, or the session is over.
  BusUserNotificationService(SessionBus& bus, std::shared_ptr<NSRunLoop> loop,
                             std::function<void()> endApplication);

  [[nodiscard]] std::optional<NSError> deliver(const NSUserNotification& notification) override;
  [[nodiscard]] std::vector<NSUserNotification> displayedNotifications() override;
  void removeAllDisplayedNotifications() override;
  void setActivationHandler(ActivationHandler handler) override;
  [[nodiscard]] std::optional<NSUserNotification> launchNotification() override;

 private:
  void receiveClicks();

  SessionBus& bus_;
  std::shared_ptr<NSRunLoop> loop_;
  std::function<void()> endApplication_;
  ActivationHandler handler_;
  AgentBusPresence presence_;
};

}  // namespace vornix
