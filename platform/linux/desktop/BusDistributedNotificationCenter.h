#pragma once

#include "platform/desktop/NSDistributedNotificationCenter.h"
#include "platform/linux/bus/SessionBus.h"

namespace vornix {

// Announcements as broadcast signals of the session bus.
class BusDistributedNotificationCenter final : public NSDistributedNotificationCenter {
 public:
  // The bus must outlive the centre.
  explicit BusDistributedNotificationCenter(SessionBus& bus) : bus_(bus) {}

  void postNotificationName(std::string_view name, std::string_view object,
                            const Dictionary& userInfo, bool deliverImmediately) override;

 private:
  SessionBus& bus_;
};

}  // namespace vornix
