#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/NSError.h"

namespace vornix::desktop {

// A service that the user's service manager is to run once.
struct TransientService {
  std::string unit;
  std::string description;
  // An absolute path.
  std::string program;
  // The program's name and its arguments.
  std::vector<std::string> arguments;
  // "NAME=VALUE".
  std::vector<std::string> environment;
  // Empty for the manager's own choice.
  std::string workingDirectory;
};

// What the session's message bus is needed for when applications are looked for and started. A bus
// that cannot be reached has no names, and nothing can be asked of it. Main thread.
class ApplicationBus {
 public:
  virtual ~ApplicationBus() = default;

  // The well-known names that have an owner.
  [[nodiscard]] virtual std::vector<std::string> ownedNames() = 0;
  [[nodiscard]] virtual std::optional<std::int32_t> processOwning(const std::string& name) = 0;
  // The proof of the latest click, good for one use; empty when there is none.
  [[nodiscard]] virtual std::string takeActivationToken() = 0;
  // Asks the application that owns this name to come to the front. `token` may be empty. True when
  // it answered.
  virtual bool activate(const std::string& name, const std::string& token) = 0;
  // True where a service manager of the user answers on the bus; asking starts none.
  [[nodiscard]] virtual bool hasServiceManager() = 0;
  // Returns when the program runs. An error when the manager refuses or the start failed.
  [[nodiscard]] virtual std::optional<NSError> startTransientService(
      const TransientService& service) = 0;
  // The process of a service that was started so; none when it has ended or cannot be told.
  [[nodiscard]] virtual std::optional<std::int32_t> mainProcess(const std::string& unit) = 0;
};

}  // namespace vornix::desktop
