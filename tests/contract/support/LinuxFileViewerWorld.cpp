#include "tests/contract/support/LinuxFileViewerWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <stdexcept>

namespace vornix::contract {
namespace {

constexpr int kPatience = 30000;

}  // namespace

LinuxFileViewerWorld::LinuxFileViewerWorld(const std::vector<tests::PrivateBus::Service>& services)
    : bus_(services), connection_(NSRunLoop::mainRunLoop()) {
  std::array<char, PATH_MAX> current{};
  if (getcwd(current.data(), current.size()) != nullptr) currentFolder_ = current.data();
  const char* path = getenv("PATH");
  path_ = path != nullptr ? path : "";
  setenv("PATH", folder.path("programs").c_str(), 1);
  const std::string reports = folder.path("reports");
  // Open for both directions, so that the pipe neither blocks nor ends while we hold it.
  if (mkfifo(reports.c_str(), 0600) != 0) throw std::runtime_error("cannot make " + reports);
  reports_ = open(reports.c_str(), O_RDWR | O_CLOEXEC);
}

LinuxFileViewerWorld::~LinuxFileViewerWorld() {
  close(reports_);
  setenv("PATH", path_.c_str(), 1);
  EXPECT_EQ(chdir(currentFolder_.c_str()), 0);
}

void LinuxFileViewerWorld::installOpener() {
  const std::string program =
      folder.write("programs/xdg-open",
                   "#!/bin/sh\nprintf '%s\\0%s\\0' \"$1\" \"$XDG_ACTIVATION_TOKEN\" 1<> \"" +
                       folder.path("reports") + "\"\n");
  EXPECT_EQ(chmod(program.c_str(), 0755), 0);
}

std::string LinuxFileViewerWorld::awaitOpened() {
  std::string folderTold = nextWord();
  lastToken_ = nextWord();
  return folderTold;
}

std::string LinuxFileViewerWorld::nextWord() const {
  std::string word;
  char letter = 0;
  pollfd poller{.fd = reports_, .events = POLLIN, .revents = 0};
  while (poll(&poller, 1, kPatience) == 1 && read(reports_, &letter, 1) == 1) {
    if (letter == '\0') return word;
    word += letter;
  }
  return "nothing was opened";
}

}  // namespace vornix::contract
