#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/runloop/NSRunLoop.h"
#include "platform/system/NSTask.h"
#include "tests/fakes/FakeTask.h"

namespace vornix {
namespace {

class RealTasks {
 public:
  std::unique_ptr<NSTask> make() { return makeTask(); }
  void willExitWith(int) {}
};

class FakeTasks {
 public:
  FakeTasks() { programs_.missing = {"/no/such/program"}; }
  std::unique_ptr<NSTask> make() { return std::make_unique<fakes::FakeTask>(programs_); }
  void willExitWith(int status) { programs_.exitStatus = status; }

 private:
  fakes::FakePrograms programs_;
};

template <typename Tasks>
class NSTaskContract : public testing::Test {
 protected:
  Tasks tasks_;
};

using Kinds = testing::Types<FakeTasks, RealTasks>;
TYPED_TEST_SUITE(NSTaskContract, Kinds);

TYPED_TEST(NSTaskContract, AnswersTheExitStatusOnceTheChildHasEnded) {
  const auto task = this->tasks_.make();
  EXPECT_EQ(task->terminationStatus(), std::nullopt);
  EXPECT_EQ(task->processIdentifier(), 0);
  this->tasks_.willExitWith(7);
  EXPECT_EQ(task->launch("/bin/sh", {"-c", "exit 7"}), std::nullopt);
  EXPECT_GT(task->processIdentifier(), 0);
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), 7);
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), 7);
}

TYPED_TEST(NSTaskContract, AMissingProgramIsAnErrorAndAnotherLaunchMayFollow) {
  const auto task = this->tasks_.make();
  const auto error = task->launch("/no/such/program", {});
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain, NSPOSIXErrorDomain);
  EXPECT_EQ(error->code, ENOENT);
  EXPECT_THAT(error->localizedDescription, testing::HasSubstr("/no/such/program"));
  EXPECT_EQ(task->processIdentifier(), 0);
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), std::nullopt);
  this->tasks_.willExitWith(0);
  EXPECT_EQ(task->launch("/bin/true", {}), std::nullopt);
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), 0);
}

TYPED_TEST(NSTaskContract, LaunchingTwiceIsAnError) {
  const auto task = this->tasks_.make();
  EXPECT_EQ(task->launch("/bin/true", {}), std::nullopt);
  const auto error = task->launch("/bin/true", {});
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, EALREADY);
  task->waitUntilExit();
  EXPECT_TRUE(task->launch("/bin/true", {}));
}

TYPED_TEST(NSTaskContract, WaitingForATaskThatWasNotLaunchedReturnsAtOnce) {
  const auto task = this->tasks_.make();
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), std::nullopt);
}

// What a shell command writes on standard output.
class LinuxTask : public testing::Test {
 protected:
  ~LinuxTask() override { unlink(path_); }

  std::string outputOf(const std::string& command, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"-c", "exec >\"$OUTPUT\"; " + command};
    arguments.insert(arguments.end(), more.begin(), more.end());
    setenv("OUTPUT", path_, 1);
    const auto task = makeTask();
    EXPECT_EQ(task->launch("/bin/sh", arguments), std::nullopt);
    task->waitUntilExit();
    EXPECT_EQ(task->terminationStatus(), 0);
    std::ostringstream text;
    text << std::ifstream(path_).rdbuf();
    return text.str();
  }

  char path_[32] = "/tmp/vornix-task-XXXXXX";
  const int file_ = mkstemp(path_);
};

TEST_F(LinuxTask, HandsTheArgumentsOnAsTheyAre) {
  EXPECT_EQ(outputOf("printf '[%s]' \"$@\"", {"sh", "a b", "", "$HOME", "*", "\xff"}),
            "[a b][][$HOME][*][\xff]");
}

TEST_F(LinuxTask, InheritsEnvironmentAndWorkingDirectory) {
  setenv("COLOUR", "green", 1);
  ASSERT_EQ(chdir("/usr/share"), 0);
  EXPECT_EQ(outputOf("printf \"$COLOUR $PWD\""), "green /usr/share");
}

TEST_F(LinuxTask, InheritsNoDescriptorBeyondTheStandardOnes) {
  const int leaking = fcntl(file_, F_DUPFD, 40);
  ASSERT_GE(leaking, 40);
  EXPECT_EQ(outputOf("for d in /proc/self/fd/*; do case ${d##*/} in [012]) ;; "
                     "*) [ -e /proc/$$/fd/${d##*/} ] && printf \"${d##*/} \";; esac; done; true"),
            "");
  close(leaking);
}

TEST_F(LinuxTask, RestoresSignalsInTheChild) {
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
  signal(SIGPIPE, SIG_IGN);
  signal(SIGHUP, SIG_IGN);
  // Two signals are the C library's own; it leaves them ignored.
  EXPECT_EQ(outputOf("grep -E '^Sig(Blk|Ign)' /proc/self/status | cut -f2 | cut -c9-"),
            "00000000\n80000000\n");
}

TEST_F(LinuxTask, KnowsHowAChildEndedThoughTheParentIgnoredItsChildren) {
  signal(SIGCHLD, SIG_IGN);
  const auto task = makeTask();
  EXPECT_EQ(task->launch("/bin/sh", {"-c", "exit 3"}), std::nullopt);
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), 3);
}

TEST_F(LinuxTask, AChildEndedByASignalCountsAs128AndItsNumber) {
  const auto task = makeTask();
  EXPECT_EQ(task->launch("/bin/sh", {"-c", "kill -TERM $$"}), std::nullopt);
  task->waitUntilExit();
  EXPECT_EQ(task->terminationStatus(), 128 + SIGTERM);
}

TEST_F(LinuxTask, WhatCannotBeRunIsAnError) {
  const auto codeOf = [](const std::string& path, const std::vector<std::string>& arguments = {}) {
    const auto error = makeTask()->launch(path, arguments);
    return error ? error->code : 0;
  };
  EXPECT_EQ(codeOf(path_), EACCES);
  EXPECT_EQ(codeOf("/tmp"), EACCES);
  EXPECT_EQ(codeOf(""), ENOENT);
  EXPECT_EQ(codeOf("/bin/true", {std::string("a\0b", 3)}), EINVAL);
  ASSERT_EQ(write(file_, "text", 4), 4);
  close(file_);
  ASSERT_EQ(chmod(path_, 0700), 0);
  EXPECT_EQ(codeOf(path_), ENOEXEC);
}

TEST_F(LinuxTask, ADelayedPerformFiresWhileTheChildIsWaitedFor) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  // The child ends when the timer closes its input.
  ASSERT_EQ(dup2(ends[0], STDIN_FILENO), STDIN_FILENO);
  close(ends[0]);
  bool hasFired = false;
  NSRunLoop::currentRunLoop()->performAfterDelay(
      [&] {
        hasFired = true;
        close(ends[1]);
      },
      0.05);
  const auto task = makeTask();
  EXPECT_EQ(task->launch("/bin/cat", {}), std::nullopt);
  EXPECT_EQ(task->terminationStatus(), std::nullopt);
  task->waitUntilExit();
  EXPECT_TRUE(hasFired);
  EXPECT_EQ(task->terminationStatus(), 0);
}

TEST_F(LinuxTask, TwoChildrenMayBeWaitedForOneInsideTheOther) {
  const auto outer = makeTask();
  const auto inner = makeTask();
  bool innerIsOver = false;
  NSRunLoop::currentRunLoop()->performAfterDelay(
      [&] {
        EXPECT_EQ(inner->launch("/bin/sh", {"-c", "exit 2"}), std::nullopt);
        inner->waitUntilExit();
        outer->waitUntilExit();
        innerIsOver = true;
      },
      0);
  EXPECT_EQ(outer->launch("/bin/sh", {"-c", "exec /bin/sleep 0.2"}), std::nullopt);
  outer->waitUntilExit();
  EXPECT_TRUE(innerIsOver);
  EXPECT_EQ(inner->terminationStatus(), 2);
  EXPECT_EQ(outer->terminationStatus(), 0);
}

}  // namespace
}  // namespace vornix
