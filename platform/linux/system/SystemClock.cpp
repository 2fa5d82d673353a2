#include "platform/system/SystemClock.h"

#include <ctime>

namespace vornix {
namespace {

double secondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

class LinuxSystemClock final : public SystemClock {
 public:
  [[nodiscard]] Date now() const override { return Date::fromUnixTime(secondsOf(CLOCK_REALTIME)); }
  // This clock stands still while the machine sleeps.
  [[nodiscard]] double systemUptime() const override { return secondsOf(CLOCK_MONOTONIC); }
};

}  // namespace

const SystemClock& sharedSystemClock() {
  static const LinuxSystemClock& clock = *new LinuxSystemClock;
  return clock;
}

}  // namespace vornix
