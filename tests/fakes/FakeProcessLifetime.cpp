#include "tests/fakes/FakeProcessLifetime.h"

#include "platform/runloop/NSRunLoop.h"

namespace vornix::fakes {

void FakeProcessLifetime::requestTermination() {
  isRequested_ = true;
  if (EventWaiter* const waiter = waiter_) waiter->wake();
}

void FakeProcessLifetime::reset() {
  isRequested_ = false;
  statuses_.clear();
}

void FakeProcessLifetime::end(int status) {
  statuses_.push_back(status);
  NSRunLoop::mainRunLoop()->stop();
  throw ProcessEnded{status};
}

}  // namespace vornix::fakes
