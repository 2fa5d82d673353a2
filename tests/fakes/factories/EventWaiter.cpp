#include "platform/runloop/EventWaiter.h"

#include "tests/fakes/FakeEventWaiter.h"

namespace vornix {

// Every loop of the process lives on the process's fake clock.
std::unique_ptr<EventWaiter> makeEventWaiter() {
  return std::make_unique<fakes::FakeEventWaiter>(fakes::processClock());
}

}  // namespace vornix
