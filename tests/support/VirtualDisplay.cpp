#include "tests/support/VirtualDisplay.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <vector>

namespace vornix::tests {

VirtualDisplay::VirtualDisplay(int width, int height) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  constexpr int there = 33;
  const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
  server_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"Xvfb", "-displayfd", std::to_string(there), "-screen", "0", screen,
                               "-nolisten", "tcp", "-noreset"},
      std::vector<ChildProcess::Descriptor>{{.here = ends[1], .there = there}});
  close(ends[1]);
  // The number and a line end come when the server is ready, the end of the pipe when it fails.
  std::string number;
  char each = 0;
  while (read(ends[0], &each, 1) == 1 && each != '\n') {
    number += each;
  }
  close(ends[0]);
  if (number.empty()) {
    throw std::runtime_error("the X server did not start");
  }
  name_ = ":" + number;
}

}  // namespace vornix::tests
