#pragma once

#include <memory>

#include "platform/desktop/ApplicationService.h"
#include "platform/linux/desktop/applications/ApplicationBus.h"
#include "platform/linux/desktop/applications/DesktopSession.h"
#include "platform/linux/desktop/applications/WindowActivation.h"

namespace vornix::desktop {

// The applications of `session`. The bus and the windows must outlive the service.
[[nodiscard]] std::unique_ptr<ApplicationService> makeApplicationService(DesktopSession session,
                                                                         ApplicationBus& bus,
                                                                         WindowActivation& windows);

}  // namespace vornix::desktop
