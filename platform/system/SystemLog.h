#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vornix {

// One client of the system's log. One thread.
class SystemLogClient {
 public:
  virtual ~SystemLogClient() = default;

  // `priority`: 1 alert, 3 error, 5 notice, 6 info.
  virtual void log(int priority, std::string_view message) = 0;
};

// Null when the log cannot be reached. `facility` is a text of the caller's; none for the default.
[[nodiscard]] std::unique_ptr<SystemLogClient> openSystemLog(
    const std::optional<std::string>& facility);

}  // namespace vornix
