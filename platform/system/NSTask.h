#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/NSError.h"

namespace vornix {

// A child process. Inherits the environment, working directory and standard descriptors, no other
// descriptor; signals are unblocked and do what they do by default. It goes on when the task is
// destroyed. Owning thread only.
class NSTask {
 public:
  virtual ~NSTask() = default;

  // An error when the program is missing or cannot be run, or the task was launched before.
  [[nodiscard]] virtual std::optional<NSError> launch(
      const std::string& path, const std::vector<std::string>& arguments) = 0;
  // Turns the calling thread's run loop in the default mode until the child has ended. Returns at
  // once when nothing was launched.
  virtual void waitUntilExit() = 0;
  // The exit status; for a child ended by a signal 128 plus its number. None before it has ended.
  [[nodiscard]] virtual std::optional<int> terminationStatus() const = 0;
  // 0 before it was launched.
  [[nodiscard]] virtual int processIdentifier() const = 0;
};

[[nodiscard]] std::unique_ptr<NSTask> makeTask();

}  // namespace vornix
