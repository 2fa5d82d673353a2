#include "tests/fakes/FakeProcessLifetime.h"

namespace vornix {

fakes::FakeProcessLifetime& fakes::processLifetime() {
  static auto& lifetime = *new FakeProcessLifetime;
  return lifetime;
}

void endProcess(int status) {
  fakes::processLifetime().end(status);
}

void watchTerminationRequests(EventWaiter& waiter) {
  fakes::processLifetime().watch(waiter);
}

bool terminationWasRequested() {
  return fakes::processLifetime().terminationWasRequested();
}

}  // namespace vornix
