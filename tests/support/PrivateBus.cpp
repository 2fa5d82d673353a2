#include "tests/support/PrivateBus.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace vornix::tests {
namespace {

constexpr const char* kAddressVariable = "DBUS_SESSION_BUS_ADDRESS";

std::string configuration(const std::string& folder) {
  return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path=)" +
         folder + R"(/bus</listen>
  <servicedir>)" +
         folder + R"(/services</servicedir>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

std::string readLine(int descriptor) {
  std::string line;
  char each = 0;
  while (read(descriptor, &each, 1) == 1 && each != '\n') {
    line += each;
  }
  return line;
}

}  // namespace

PrivateBus::PrivateBus(const std::vector<Service>& services) {
  for (const Service& service : services) {
    folder_.write("services/" + service.name + ".service",
                  "[D-BUS Service]\nName=" + service.name + "\nExec=" + service.command + "\n");
  }
  const std::string file = folder_.write("bus.conf", configuration(folder_.path()));
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  constexpr int there = 33;
  daemon_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"dbus-daemon", "--nofork", "--nopidfile", "--config-file=" + file,
                               "--print-address=" + std::to_string(there)},
      std::vector<ChildProcess::Descriptor>{{.here = ends[1], .there = there}});
  close(ends[1]);
  // The address comes when the bus is ready, the end of the pipe when it fails.
  address_ = readLine(ends[0]);
  close(ends[0]);
  if (address_.empty()) {
    throw std::runtime_error("the message bus did not start");
  }
  setenv(kAddressVariable, address_.c_str(), 1);
}

PrivateBus::~PrivateBus() {
  unsetenv(kAddressVariable);
}

void forgetSessionBus() {
  unsetenv(kAddressVariable);
  unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace vornix::tests
