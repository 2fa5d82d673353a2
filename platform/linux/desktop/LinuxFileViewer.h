#pragma once

#include <memory>

#include "platform/desktop/FileViewer.h"
#include "platform/linux/bus/SessionBus.h"
#include "platform/linux/desktop/applications/ApplicationBus.h"

namespace vornix::desktop {

// Asks the file manager on the bus, which may have to be started for that, and waits `patience`
// seconds for its answer. Without one it has "xdg-open" open the folder. Both buses must outlive
// the viewer.
[[nodiscard]] std::unique_ptr<FileViewer> makeFileViewer(SessionBus& bus,
                                                         ApplicationBus& applications,
                                                         double patience = kBusTimeout);

}  // namespace vornix::desktop
