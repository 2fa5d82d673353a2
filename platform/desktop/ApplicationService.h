#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Date.h"
#include "platform/base/NSError.h"

namespace vornix {

// One process of an application with a desktop entry.
struct RunningApplicationEntry {
  // May be empty when the application cannot be named.
  std::string bundleIdentifier;
  std::int32_t processIdentifier = 0;
  Date launchDate;

  friend bool operator==(const RunningApplicationEntry&, const RunningApplicationEntry&) = default;
};

// How an application is to be started.
struct ApplicationLaunch {
  std::string bundlePath;
  std::vector<std::string> files;
  std::vector<std::string> arguments;
  bool activate = true;
  // Starts it even when it already runs.
  bool newInstance = false;
};

// The applications of the desktop session. Main thread.
class ApplicationService {
 public:
  virtual ~ApplicationService() = default;

  // One entry a process, in launch order.
  [[nodiscard]] virtual std::vector<RunningApplicationEntry> runningApplications() = 0;
  // The desktop entry of the application whose identifier is equal ignoring case; none when it is
  // not installed.
  [[nodiscard]] virtual std::optional<std::string> applicationPath(std::string_view identifier) = 0;
  // Brings it to the front; true when it was asked. A click that the desktop vouches for goes with
  // the request.
  virtual bool activate(const RunningApplicationEntry& application) = 0;
  // Asks it to end; true when the request was sent.
  virtual bool terminate(const RunningApplicationEntry& application) = 0;
  // The started (or already running) application, or an error. Does not wait until it is ready.
  [[nodiscard]] virtual std::optional<RunningApplicationEntry> launch(
      const ApplicationLaunch& request, std::optional<NSError>& error) = 0;
  // The program that opens an application by its identifier.
  [[nodiscard]] virtual std::string openToolPath() const = 0;
};

// Does nothing until first used. Shared by the process, never destroyed.
[[nodiscard]] ApplicationService& sharedApplicationService();

}  // namespace vornix
