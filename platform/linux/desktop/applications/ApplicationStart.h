#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/NSError.h"
#include "platform/linux/desktop/applications/ApplicationBus.h"
#include "platform/linux/desktop/applications/DesktopEntry.h"
#include "platform/linux/desktop/applications/DesktopSession.h"

namespace vornix::desktop {

struct ApplicationStartRequest {
  std::vector<std::string> files;
  std::vector<std::string> arguments;
  // The proof of the person's click; may be empty.
  std::string activationToken;
};

// Starts the application of a desktop entry: as a service of the user's service manager where there
// is one, so that it outlives whoever started it, else as a process of its own. The number of its
// (first) process, 0 where it cannot be told. None and an error when it cannot be started.
[[nodiscard]] std::optional<std::int32_t> startApplication(const DesktopEntry& entry,
                                                           const ApplicationStartRequest& request,
                                                           const DesktopSession& session,
                                                           ApplicationBus& bus,
                                                           std::optional<NSError>& error);

}  // namespace vornix::desktop
