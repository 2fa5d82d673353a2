#include "platform/system/HardwareRegistry.h"

#include "tests/fakes/FakeHardwareRegistry.h"

namespace vornix {

fakes::FakeHardwareRegistry& fakes::processHardware() {
  static auto& registry = *new FakeHardwareRegistry;
  return registry;
}

const HardwareRegistry& sharedHardwareRegistry() {
  return fakes::processHardware();
}

}  // namespace vornix
