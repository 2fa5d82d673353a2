#pragma once

#include <functional>
#include <vector>

#include "platform/base/Value.h"

namespace vornix {

// What applications ask of the notification centre.
class NotificationRequests {
 public:
  virtual ~NotificationRequests() = default;
  // False when the dictionary describes no notification.
  virtual bool deliver(const Dictionary& notification) = 0;
  [[nodiscard]] virtual std::vector<Dictionary> displayed() const = 0;
  virtual void removeAllDisplayed() = 0;
};

// The address at which applications of the session reach the notification centre. Main thread.
class NotificationCenterPort {
 public:
  virtual ~NotificationCenterPort() = default;

  // False when there is no session, or another process has the address already. Both arguments
  // are used until the port is gone; `lost` is called when the session ends.
  virtual bool open(NotificationRequests& requests, std::function<void()> lost) = 0;
  // Gives the address up and serves the requests that had arrived by then.
  virtual void close() = 0;
  // Takes the address again after `close`; false when another process was quicker.
  virtual bool reopen() = 0;
  // Blocks until everything sent has left.
  virtual void flush() = 0;
};

// The session's, never destroyed.
[[nodiscard]] NotificationCenterPort& sharedNotificationCenterPort();

}  // namespace vornix
