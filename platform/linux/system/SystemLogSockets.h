#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/system/SystemLog.h"

namespace vornix {

// Where the system's log listens: the journal, which is tried first, and the older protocol.
struct SystemLogSockets {
  std::string journal = "/run/systemd/journal/socket";
  std::string syslog = "/dev/log";
};

// Null when nobody listens at either. `process` is what the records are marked with.
[[nodiscard]] std::unique_ptr<SystemLogClient> openSystemLogAt(
    const SystemLogSockets& sockets, const std::optional<std::string>& facility,
    const std::string& process);

}  // namespace vornix
