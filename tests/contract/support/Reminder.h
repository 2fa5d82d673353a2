#pragma once

#include "platform/desktop/NSUserNotification.h"

namespace vornix::contract {

// A notification as the agent posts it.
inline NSUserNotification someReminder() {
  return {.title = "Time to clean up",
          .informativeText = "Scan now",
          .hasActionButton = true,
          .actionButtonTitle = "Launch",
          .otherButtonTitle = "Cancel"};
}

}  // namespace vornix::contract
