#include "tests/fakes/FakeThreadPriority.h"

namespace vornix {

ThreadPriority& sharedThreadPriority() {
  static auto& priority = *new fakes::FakeThreadPriority;
  return priority;
}

}  // namespace vornix
