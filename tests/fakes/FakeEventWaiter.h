#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <set>

#include "platform/runloop/EventWaiter.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeSystemClock.h"

namespace vornix::fakes {

// A wait whose time is the fake clock's: unless something ends it at once, it jumps the clock to
// its deadline. A wait without deadline blocks until it is woken.
class FakeEventWaiter final : public EventWaiter {
 public:
  // The clock, which may be shared, must outlive the waiter.
  explicit FakeEventWaiter(FakeSystemClock& clock) : clock_(clock) {}

  [[nodiscard]] double now() const override { return clock_.systemUptime(); }
  [[nodiscard]] std::vector<std::size_t> wait(std::optional<double> deadline,
                                              std::span<const WaitHandle> handles) override;
  void wake() noexcept override;

  // Runs at the start of a wait of the loop's thread, one action a wait, in the order given: what
  // happens in the world while the loop sleeps.
  void atNextWait(std::function<void()> action);
  // While held, time stands still: a wait with a deadline blocks too, until it is woken or
  // `advance` takes the clock to its deadline. For tests in which other threads do real work.
  void holdTime(bool held);
  void advance(double seconds);
  // Any number may be used for a descriptor.
  void setReady(int descriptor, bool ready = true);

  // How often the loop has waited, and for which deadlines.
  [[nodiscard]] std::vector<std::optional<double>> waits() const;

 private:
  [[nodiscard]] std::vector<std::size_t> readyPositions(std::span<const WaitHandle> handles) const;
  void runNextAction();

  FakeSystemClock& clock_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> actions_;
  std::vector<std::optional<double>> waits_;
  std::set<int> ready_;
  bool isWoken_ = false;
  bool isHeld_ = false;
};

// What a loop sleeps on in a program of the fake platform.
FakeEventWaiter& waiterOf(NSRunLoop& loop);

}  // namespace vornix::fakes
