#include "tests/fakes/FakeStandardDirectories.h"

namespace vornix {

fakes::FakeStandardDirectories& fakes::standardDirectories() {
  static auto& directories = *new FakeStandardDirectories;
  return directories;
}

const StandardDirectories& sharedStandardDirectories() {
  return fakes::standardDirectories();
}

}  // namespace vornix
