#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace vornix::contract {

// A process of its own that does what the test wants, ready to get signals.
class ForkedProcess {
 public:
  explicit ForkedProcess(const std::function<void()>& life) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    pid_ = fork();
    if (pid_ == 0) {
      ready_ = ends[1];
      life();
      _exit(99);
    }
    close(ends[1]);
    ready_ = ends[0];
  }
  ~ForkedProcess() { close(ready_); }

  // In the child: it has come so far.
  static void isReady() { (void)!::write(ready_, "r", 1); }
  void awaitReady() {
    char byte = 0;
    EXPECT_EQ(read(ready_, &byte, 1), 1);
  }
  void signal(int number) const { EXPECT_EQ(kill(pid_, number), 0); }
  // The exit status; minus the signal that ended it.
  [[nodiscard]] int awaitEnd() const {
    int status = 0;
    EXPECT_EQ(waitpid(pid_, &status, 0), pid_);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  static inline int ready_ = -1;
  pid_t pid_ = 0;
};

}  // namespace vornix::contract
