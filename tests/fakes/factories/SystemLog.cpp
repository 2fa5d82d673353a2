#include "platform/system/SystemLog.h"

#include "tests/fakes/FakeSystemLog.h"

namespace vornix {

fakes::FakeSystemLog& fakes::processSystemLog() {
  static auto& log = *new FakeSystemLog;
  return log;
}

std::unique_ptr<SystemLogClient> openSystemLog(const std::optional<std::string>& facility) {
  return fakes::processSystemLog().open(facility);
}

}  // namespace vornix
