#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "platform/desktop/ProcessLifetime.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/contract/support/ForkedProcess.h"

namespace vornix {
namespace {

using Victim = contract::ForkedProcess;

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
