#include "tests/fakes/FakeDistributedNotificationCenter.h"

namespace vornix {

fakes::FakeDistributedNotificationCenter& fakes::processDistributedCenter() {
  static auto& center = *new FakeDistributedNotificationCenter;
  return center;
}

NSDistributedNotificationCenter& NSDistributedNotificationCenter::defaultCenter() {
  return fakes::processDistributedCenter();
}

}  // namespace vornix
