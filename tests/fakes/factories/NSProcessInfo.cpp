#include "tests/fakes/FakeProcessInfo.h"

namespace vornix {

fakes::FakeProcessInfo& fakes::processInfo() {
  static auto& info = *new FakeProcessInfo;
  return info;
}

const NSProcessInfo& NSProcessInfo::processInfo() {
  return fakes::processInfo();
}

}  // namespace vornix
