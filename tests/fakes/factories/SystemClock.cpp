#include "tests/fakes/FakeSystemClock.h"

namespace vornix {

fakes::FakeSystemClock& fakes::processClock() {
  static auto& clock = *new FakeSystemClock;
  return clock;
}

const SystemClock& sharedSystemClock() {
  return fakes::processClock();
}

}  // namespace vornix
