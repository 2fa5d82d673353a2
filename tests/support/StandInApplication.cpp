#include "tests/support/StandInApplication.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace vornix::tests {
namespace {

constexpr int kPatience = 30000;
constexpr std::string_view kEnd = "end";

// One record goes out in one write, so that several at once do not mix. The time limit is for a
// test that ends before its stand-in has opened the pipe.
constexpr std::string_view kProgram = R"sh(#!/bin/sh
report=$(
  for argument in "$@"; do printf 'argument:%s\n' "$argument"; done
  printf 'pidVariable:%s\n' "$GIO_LAUNCHED_DESKTOP_FILE_PID"
  printf 'fileVariable:%s\n' "$GIO_LAUNCHED_DESKTOP_FILE"
  printf 'token:%s\n' "$XDG_ACTIVATION_TOKEN"
  printf 'startup:%s\n' "$DESKTOP_STARTUP_ID"
  printf 'folder:%s\n' "$(pwd)"
  printf 'process:%s\n' "$$"
  printf 'end'
)
printf '%s\n' "$report" 1<> "REPORTS"
timeout 100 cat "LIFE"
)sh";

int openPipe(const std::string& path) {
  // Open for both directions, so that the pipe neither blocks nor ends while we hold it.
  if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make " + path);
  return open(path.c_str(), O_RDWR | O_CLOEXEC);
}

std::string replaced(std::string text, std::string_view what, const std::string& with) {
  return text.replace(text.find(what), what.size(), with);
}

bool becomesReadable(int descriptor, int milliseconds) {
  pollfd poller{.fd = descriptor, .events = POLLIN, .revents = 0};
  return poll(&poller, 1, milliseconds) == 1;
}

std::optional<std::string> nextLine(int descriptor) {
  std::string line;
  char letter = 0;
  while (becomesReadable(descriptor, kPatience) && read(descriptor, &letter, 1) == 1) {
    if (letter == '\n') return line;
    line += letter;
  }
  return std::nullopt;
}

void take(StandInReport& report, const std::string& line) {
  const auto colon = line.find(':');
  const std::string key = line.substr(0, colon);
  const std::string value = colon == std::string::npos ? "" : line.substr(colon + 1);
  if (key == "argument") report.arguments.push_back(value);
  if (key == "pidVariable") report.processVariable = value;
  if (key == "fileVariable") report.fileVariable = value;
  if (key == "token") report.activationToken = value;
  if (key == "startup") report.startupId = value;
  if (key == "folder") report.workingDirectory = value;
  if (key == "process") report.process = std::atoi(value.c_str());
}

}  // namespace

StandInApplication::StandInApplication(const ScratchFolder& folder, std::string_view identifier,
                                       std::string_view code, std::string_view more) {
  const std::string name(identifier);
  programPath_ = folder.write("programs/" + name, "");
  const std::string reports = programPath_ + ".reports";
  const std::string life = programPath_ + ".life";
  reports_ = openPipe(reports);
  life_ = openPipe(life);
  folder.write("programs/" + name,
               replaced(replaced(std::string(kProgram), "REPORTS", reports), "LIFE", life));
  if (chmod(programPath_.c_str(), 0755) != 0) throw std::runtime_error("cannot make a program");
  entryPath_ =
      folder.write("data/applications/" + name + ".desktop",
                   "[Desktop Entry]\nType=Application\nName=Stand-in\nExec=\"" + programPath_ +
                       "\" " + std::string(code) + "\n" + std::string(more));
}

StandInApplication::~StandInApplication() {
  // First the name: a stand-in that comes late must not wait for somebody at the other end.
  unlink((programPath_ + ".life").c_str());
  close(reports_);
  close(life_);
}

std::optional<StandInReport> StandInApplication::nextReport() const {
  StandInReport report;
  while (const auto line = nextLine(reports_)) {
    if (*line == kEnd) return report;
    take(report, *line);
  }
  return std::nullopt;
}

bool StandInApplication::hasReport() const {
  return becomesReadable(reports_, 0);
}

std::string StandInApplication::dataFolder(const ScratchFolder& folder) {
  return folder.path("data");
}

bool waitForEnd(std::int32_t process) {
  const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  if (descriptor < 0) return true;
  const bool ended = becomesReadable(descriptor, kPatience);
  close(descriptor);
  return ended;
}

}  // namespace vornix::tests
