#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::tests {

// A session bus of the test's own, on which nothing can be started but the programs named here.
// While it lives, DBUS_SESSION_BUS_ADDRESS leads to it. Throws when there is no bus to start.
class PrivateBus {
 public:
  struct Service {
    std::string name;
    // The command line, as a service file has it.
    std::string command;
  };

  explicit PrivateBus(const std::vector<Service>& services = {});
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  [[nodiscard]] const std::string& address() const { return address_; }
  // Ends the bus and with it every connection.
  void stop() { daemon_.reset(); }

 private:
  ScratchFolder folder_;
  std::unique_ptr<ChildProcess> daemon_;
  std::string address_;
};

// Takes every way to a session bus out of the environment.
void forgetSessionBus();

}  // namespace vornix::tests
