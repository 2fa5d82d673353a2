#include "platform/desktop/UserNotificationService.h"

#include "platform/desktop/NSApplication.h"
#include "platform/linux/desktop/BusUserNotificationService.h"

namespace vornix {

UserNotificationService& sharedUserNotificationService() {
  static auto& service = *new BusUserNotificationService(
      SessionBus::shared(), NSRunLoop::mainRunLoop(),
      [] { NSApplication::sharedApplication().terminate(nullptr); });
  return service;
}

}  // namespace vornix
