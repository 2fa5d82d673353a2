#pragma once

#include <atomic>

#include "platform/system/SystemClock.h"

namespace vornix::fakes {

// A clock that stands still until it is told.
class FakeSystemClock final : public SystemClock {
 public:
  [[nodiscard]] Date now() const override { return Date{now_}; }
  [[nodiscard]] double systemUptime() const override { return uptime_; }

  void setNow(Date date) { now_ = date.timeIntervalSinceReferenceDate; }
  void setSystemUptime(double seconds) { uptime_ = seconds; }
  // Both clocks.
  void advance(double seconds) {
    now_ = now_ + seconds;
    uptime_ = uptime_ + seconds;
  }

 private:
  std::atomic<double> now_ = 800000000.0;
  std::atomic<double> uptime_ = 100000.0;
};

// The one that `sharedSystemClock` answers on the fake platform.
FakeSystemClock& processClock();

}  // namespace vornix::fakes
