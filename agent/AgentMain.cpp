#include "agent/AgentMain.h"

#include <utility>

#include "agent/AppDelegate.h"
#include "logging/GTMLogger.h"
#include "platform/base/Diagnostics.h"
#include "settings/VXDistributedPreferences.h"

namespace vornix {

int runAgent(int argc, char** argv, AgentServices services) {
  setDiagnosticReceiver(
      [](std::string_view line) { GTMLogger::sharedLogger()->logError("%@", line); });
  VXDistributedPreferences::load();
  return NSApplicationMain(argc, argv,
                           [&services] { return AppDelegate::create(std::move(services)); });
}

}  // namespace vornix
