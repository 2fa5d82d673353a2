#pragma once

#include "platform/linux/desktop/applications/ApplicationBus.h"

namespace vornix::desktop {

// On the session bus of this process; connects when first asked. Never destroyed.
[[nodiscard]] ApplicationBus& sharedApplicationBus();

}  // namespace vornix::desktop
