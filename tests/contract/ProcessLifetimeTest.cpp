#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "platform/desktop/ProcessLifetime.h"
#include "platform/runloop/NSRunLoop.h"

namespace vornix {
namespace {

// A process of its own that does what the test wants, ready to get signals.
class Victim {
 public:
  explicit Victim(const std::function<void()>& life) {
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
  ~Victim() { close(ready_); }

  // In the child: it has come so far.
  static void isReady() { (void)!write(ready_, "r", 1); }
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

TEST(ProcessLifetime, EndsAtOnceWithoutExitHandlers) {
  const Victim victim([] {
    std::atexit([] { _exit(50); });
    std::fputs("lost", stdout);
    endProcess(3);
  });
  EXPECT_EQ(victim.awaitEnd(), 3);
}

TEST(ProcessLifetime, EachRequestIsNotedAndWakesTheLoop) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    Victim victim([] {
      const auto loop = NSRunLoop::mainRunLoop();
      watchTerminationRequests(loop->eventWaiter());
      if (terminationWasRequested()) return;
      Victim::isReady();
      if (loop->runUntil(terminationWasRequested, 60)) endProcess(0);
    });
    victim.awaitReady();
    victim.signal(number);
    EXPECT_EQ(victim.awaitEnd(), 0) << number;
  }
}

TEST(ProcessLifetime, ARequestBeforeTheLoopRunsIsSeenByIt) {
  const Victim victim([] {
    const auto loop = NSRunLoop::mainRunLoop();
    watchTerminationRequests(loop->eventWaiter());
    raise(SIGTERM);
    if (loop->runUntil(terminationWasRequested, 60)) endProcess(0);
  });
  EXPECT_EQ(victim.awaitEnd(), 0);
}

TEST(ProcessLifetime, ARequestThatReachesAnotherThreadWakesTheLoop) {
  const Victim victim([] {
    const auto loop = NSRunLoop::mainRunLoop();
    watchTerminationRequests(loop->eventWaiter());
    std::thread([] { raise(SIGINT); }).detach();
    if (loop->runUntil(terminationWasRequested, 60)) endProcess(0);
  });
  EXPECT_EQ(victim.awaitEnd(), 0);
}

TEST(ProcessLifetime, RepeatedRequestsRightAfterTheFirstDoNotCutTheEndShort) {
  const Victim victim([] {
    const auto loop = NSRunLoop::mainRunLoop();
    watchTerminationRequests(loop->eventWaiter());
    for (const int number : {SIGTERM, SIGHUP, SIGTERM}) raise(number);
    endProcess(7);
  });
  EXPECT_EQ(victim.awaitEnd(), 7);
}

TEST(ProcessLifetime, ARequestRepeatedLaterEndsAProcessThatHangs) {
  Victim victim([] {
    watchTerminationRequests(NSRunLoop::mainRunLoop()->eventWaiter());
    Victim::isReady();
    while (true) pause();
  });
  victim.awaitReady();
  victim.signal(SIGTERM);
  // The second request has to come later than the first by the machine's own clock.
  const double due = sharedSystemClock().systemUptime() + 2.5;
  while (sharedSystemClock().systemUptime() < due) {
    (void)NSRunLoop::currentRunLoop()->runUntil([] { return false; }, 2.5);
  }
  victim.signal(SIGTERM);
  EXPECT_EQ(victim.awaitEnd(), 0);
}

TEST(ProcessLifetime, WritingToAPipeThatNobodyReadsDoesNotEndTheProcess) {
  const Victim victim([] {
    watchTerminationRequests(NSRunLoop::mainRunLoop()->eventWaiter());
    int ends[2];
    if (pipe(ends) != 0) return;
    close(ends[0]);
    if (write(ends[1], "x", 1) == -1 && errno == EPIPE) endProcess(0);
  });
  EXPECT_EQ(victim.awaitEnd(), 0);
}

}  // namespace
}  // namespace vornix
