#include "platform/system/NSTask.h"

#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <limits>

#include "platform/linux/desktop/ActivationToken.h"
#include "platform/linux/system/FileDescriptor.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {
namespace {

// Where the system has no descriptor for the child, it is asked after this often.
constexpr double kLookoutSeconds = 0.01;

// The library's own declaration is of C++ linkage in some versions, where it has no definition.
FileDescriptor descriptorOfProcess(pid_t pid) {
  return FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
}

// One launched child.
class Child final : public RunLoopSource {
 public:
  explicit Child(pid_t pid) : pid_(pid), descriptor_(descriptorOfProcess(pid)) {}

  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] std::optional<int> status() {
    if (!status_) perform();
    return status_;
  }

  [[nodiscard]] WaitHandle handle() const override { return {.descriptor = descriptor_.get()}; }
  [[nodiscard]] std::optional<double> timeout() const override {
    return descriptor_.isOpen() ? std::nullopt : std::optional(kLookoutSeconds);
  }
  void perform() override {
    int status = 0;
    if (status_) return;
    const pid_t ended = waitpid(pid_, &status, WNOHANG);
    if (ended == 0 || (ended < 0 && errno == EINTR)) return;
    // Somebody else took the status of a child that is gone.
    if (ended < 0) status_ = 0;
    if (ended == pid_) status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  pid_t pid_;
  FileDescriptor descriptor_;
  std::optional<int> status_;
};

class SpawnAttributes {
 public:
  SpawnAttributes() {
    sigset_t signals;
    posix_spawnattr_init(&attributes_);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

class SpawnActions {
 public:
  SpawnActions() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
  }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

// An inherited "ignore" would make the system forget how the child ended.
void keepStatusOfChildren() {
  struct sigaction present {};
  if (sigaction(SIGCHLD, nullptr, &present) == 0 && present.sa_handler == SIG_IGN) {
    signal(SIGCHLD, SIG_DFL);
  }
}

// Ours; after a click, with the proof of it: a program that the click is to bring up needs that to
// come to the front.
class ChildEnvironment {
 public:
  ChildEnvironment() {
    const std::string token = desktop::takeActivationTokenOfClick();
    if (token.empty()) return;
    for (char** variable = environ; *variable != nullptr; ++variable)
      variables_.emplace_back(*variable);
    variables_ = desktop::environmentWithActivationToken(std::move(variables_), token);
    for (std::string& variable : variables_) pointers_.push_back(variable.data());
    pointers_.push_back(nullptr);
  }

  [[nodiscard]] char* const* get() const { return pointers_.empty() ? environ : pointers_.data(); }

 private:
  std::vector<std::string> variables_;
  std::vector<char*> pointers_;
};

bool hasZeroByte(const std::string& text) {
  return text.find('\0') != std::string::npos;
}

class LinuxTask final : public NSTask {
 public:
  [[nodiscard]] std::optional<NSError> launch(const std::string& path,
                                              const std::vector<std::string>& arguments) override;
  void waitUntilExit() override;
  [[nodiscard]] std::optional<int> terminationStatus() const override {
    return child_ ? child_->status() : std::nullopt;
  }
  [[nodiscard]] int processIdentifier() const override { return child_ ? child_->pid() : 0; }

 private:
  std::shared_ptr<Child> child_;
};

std::optional<NSError> LinuxTask::launch(const std::string& path,
                                         const std::vector<std::string>& arguments) {
  if (child_) return posixError(EALREADY, path);
  if (hasZeroByte(path) || std::ranges::any_of(arguments, hasZeroByte)) {
    return posixError(EINVAL, path);
  }
  keepStatusOfChildren();
  std::vector<char*> argv{const_cast<char*>(path.c_str())};
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  pid_t pid = 0;
  const int error = posix_spawn(&pid, path.c_str(), SpawnActions().get(), SpawnAttributes().get(),
                                argv.data(), ChildEnvironment().get());
  if (error != 0) return posixError(error, path);
  child_ = std::make_shared<Child>(pid);
  return std::nullopt;
}

void LinuxTask::waitUntilExit() {
  const std::shared_ptr<Child> child = child_;
  if (!child || child->status()) return;
  const auto loop = NSRunLoop::currentRunLoop();
  loop->addSource(child, {NSDefaultRunLoopMode});
  (void)loop->runUntil([&] { return child->status().has_value(); },
                       std::numeric_limits<double>::infinity());
  loop->removeSource(*child);
}

}  // namespace

std::unique_ptr<NSTask> makeTask() {
  return std::make_unique<LinuxTask>();
}

}  // namespace vornix
