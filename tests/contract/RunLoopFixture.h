#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeEventWaiter.h"

namespace vornix::contract {

inline constexpr RunLoopMode kPanelMode = "panel";
inline constexpr double kShort = 0.02;
inline constexpr double kGenerous = 60;

// The same loop on a clock that jumps and on the machine's own.
class FakeTime {
 public:
  std::unique_ptr<EventWaiter> makeWaiter() {
    auto waiter = std::make_unique<fakes::FakeEventWaiter>(clock_);
    waiter_ = waiter.get();
    return waiter;
  }
  const SystemClock& clock() const { return clock_; }
  // Other threads work in real time.
  void workWithThreads() { waiter_->holdTime(true); }

 private:
  fakes::FakeSystemClock clock_;
  fakes::FakeEventWaiter* waiter_ = nullptr;
};

class RealTime {
 public:
  std::unique_ptr<EventWaiter> makeWaiter() { return makeEventWaiter(); }
  const SystemClock& clock() const { return sharedSystemClock(); }
  void workWithThreads() {}
};

template <typename Time>
class RunLoopFixture : public testing::Test {
 protected:
  RunLoopFixture() {
    setDiagnosticReceiver([this](std::string_view line) { diagnostics_.emplace_back(line); });
  }
  ~RunLoopFixture() override { setDiagnosticReceiver({}); }

  NSRunLoop::Block note(std::string text) {
    return [this, text = std::move(text)] { events_.push_back(text); };
  }
  bool runUntilEvents(std::size_t count, RunLoopMode mode = NSDefaultRunLoopMode) {
    return loop_.runUntil([&] { return events_.size() >= count; }, kGenerous, mode);
  }
  Date fromNow(double seconds) { return time_.clock().now().addingTimeInterval(seconds); }
  double now() { return loop_.eventWaiter().now(); }

  Time time_;
  NSRunLoop loop_{time_.makeWaiter(), time_.clock()};
  std::vector<std::string> events_;
  std::vector<std::string> diagnostics_;
};

using Times = testing::Types<FakeTime, RealTime>;

}  // namespace vornix::contract
