#include "platform/system/SystemClock.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeSystemClock.h"

namespace vornix {
namespace {

constexpr double kWhile = 0.2;
// What the wall clock may gain or lose meanwhile when it is being set right.
constexpr double kSlew = 0.05;
constexpr double kRounding = 1e-5;

class FakeMachine {
 public:
  const SystemClock& clock() { return clock_; }
  void pass(double seconds) { clock_.advance(seconds); }

 private:
  fakes::FakeSystemClock clock_;
};

class RealMachine {
 public:
  const SystemClock& clock() { return sharedSystemClock(); }
  void pass(double seconds) {
    (void)NSRunLoop::currentRunLoop()->runUntil([] { return false; }, seconds);
  }
};

template <typename Machine>
class SystemClockContract : public testing::Test {
 protected:
  Machine machine_;
  const SystemClock& clock_ = machine_.clock();
};

using Machines = testing::Types<FakeMachine, RealMachine>;
TYPED_TEST_SUITE(SystemClockContract, Machines);

TYPED_TEST(SystemClockContract, HasRunForSomeTimeAlready) {
  EXPECT_GT(this->clock_.systemUptime(), 0);
}

TYPED_TEST(SystemClockContract, UptimeGrowsByTheTimeThatPasses) {
  const double before = this->clock_.systemUptime();
  this->machine_.pass(kWhile);
  EXPECT_GE(this->clock_.systemUptime() - before, kWhile - kRounding);
}

TYPED_TEST(SystemClockContract, UptimeNeverGoesBackwards) {
  double last = this->clock_.systemUptime();
  for (int reading = 0; reading < 10000; ++reading) {
    const double next = this->clock_.systemUptime();
    ASSERT_GE(next, last);
    last = next;
  }
}

TYPED_TEST(SystemClockContract, TheWallClockAdvancesAsUptimeDoes) {
  const double beforeFirst = this->clock_.systemUptime();
  const Date first = this->clock_.now();
  const double afterFirst = this->clock_.systemUptime();
  this->machine_.pass(kWhile);
  const double beforeSecond = this->clock_.systemUptime();
  const Date second = this->clock_.now();
  const double afterSecond = this->clock_.systemUptime();
  const double advance =
      second.timeIntervalSinceReferenceDate - first.timeIntervalSinceReferenceDate;
  EXPECT_GE(advance, beforeSecond - afterFirst - kSlew);
  EXPECT_LE(advance, afterSecond - beforeFirst + kSlew);
}

TYPED_TEST(SystemClockContract, TellsEveryThreadTheSameTime) {
  const double before = this->clock_.systemUptime();
  double there = 0;
  std::thread([&] { there = this->clock_.systemUptime(); }).join();
  EXPECT_GE(there, before);
  EXPECT_LE(there, this->clock_.systemUptime());
}

}  // namespace
}  // namespace vornix
