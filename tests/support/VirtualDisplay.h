#pragma once

#include <memory>
#include <string>

#include "tests/support/ChildProcess.h"

namespace vornix::tests {

// An X server without a monitor, at a free display number.
class VirtualDisplay {
 public:
  // Waits until the server takes connections. Throws when there is no server program.
  VirtualDisplay(int width, int height);

  // ":7", as DISPLAY has it.
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] pid_t processIdentifier() const { return server_->processIdentifier(); }

 private:
  std::string name_;
  std::unique_ptr<ChildProcess> server_;
};

}  // namespace vornix::tests
