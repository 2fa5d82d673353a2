#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace vornix::tests {
namespace {

std::string findProgram(const std::string& name) {
  if (name.find('/') != std::string::npos) {
    return name;
  }
  const char* path = getenv("PATH");
  std::string_view folders = path != nullptr ? path : "";
  const std::string all = std::string(folders) + ":/usr/local/sbin:/usr/sbin:/sbin";
  std::size_t begin = 0;
  while (begin <= all.size()) {
    const std::size_t end = std::min(all.find(':', begin), all.size());
    std::string candidate = all.substr(begin, end - begin) + "/" + name;
    if (access(candidate.c_str(), X_OK) == 0) {
      return candidate;
    }
    begin = end + 1;
  }
  throw std::runtime_error("no program " + name);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    result.push_back(text.data());
  }
  result.push_back(nullptr);
  return result;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& variables) {
  std::vector<std::string> all = variables;
  for (char** each = environ; *each != nullptr; ++each) {
    all.emplace_back(*each);
  }
  return all;
}

// Between fork and exec: nothing that allocates.
void become(const char* program, char* const* arguments, char* const* variables,
            const std::vector<ChildProcess::Descriptor>& descriptors) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  for (const auto& [here, there] : descriptors) {
    if (here == there) {
      fcntl(here, F_SETFD, 0);
    } else {
      dup2(here, there);
    }
  }
  execve(program, arguments, variables);
  _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::vector<Descriptor>& descriptors,
                           const std::vector<std::string>& variables) {
  const std::string program = findProgram(arguments.at(0));
  std::vector<std::string> words = arguments;
  std::vector<std::string> environment = environmentWith(variables);
  const std::vector<char*> wordPointers = pointers(words);
  const std::vector<char*> environmentPointers = pointers(environment);
  pid_ = fork();
  if (pid_ == 0) {
    become(program.c_str(), wordPointers.data(), environmentPointers.data(), descriptors);
  }
  if (pid_ < 0) {
    throw std::runtime_error("cannot start " + program);
  }
}

ChildProcess::~ChildProcess() {
  terminate();
}

// Asks again: a program that is only just starting may note a signal and then wait for the next
// one.
void ChildProcess::terminate() {
  if (pid_ <= 0) {
    return;
  }
  constexpr int patience = 500;
  const int ended = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  pollfd entry{.fd = ended, .events = POLLIN, .revents = 0};
  do {
    kill(pid_, SIGTERM);
  } while (ended >= 0 && poll(&entry, 1, patience) == 0);
  close(ended);
  wait();
}

int ChildProcess::wait() {
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace vornix::tests
