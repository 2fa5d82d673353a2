#include "agent/VNXLauncher.h"

#include <utility>

#include "foundation/NSWorkspace+LaunchedApplications.h"
#include "logging/GTMLogger.h"
#include "platform/base/Format.h"

namespace vornix {
namespace {

constexpr std::string_view kNotificationObject = "VNXHelper";

Array arrayOf(const std::vector<std::string>& texts) {
  return {texts.begin(), texts.end()};
}

}  // namespace

VNXLauncher::VNXLauncher(Services services) : services_(std::move(services)) {}

void VNXLauncher::launchVNXWithArgument(std::string_view argument,
                                        const std::optional<std::vector<std::string>>& files) {
  VNXLauncher launcher({.workspace = NSWorkspace::sharedWorkspace(),
                        .distributedCenter = NSDistributedNotificationCenter::defaultCenter,
                        .makeTask = makeTask,
                        .openTool = sharedApplicationService().openToolPath()});
  launcher.launch(argument, files);
}

void VNXLauncher::launch(std::string_view argument,
                         const std::optional<std::vector<std::string>>& files) {
  const std::vector<std::string> paths = files.value_or(std::vector<std::string>());
  if (isApplicationRunning(services_.workspace, mainApplicationIdentifier)) {
    askRunningApplication(argument, paths);
    return;
  }
  std::vector<std::string> arguments{"-b", std::string(mainApplicationIdentifier), "-F"};
  arguments.insert(arguments.end(), paths.begin(), paths.end());
  arguments.emplace_back("--args");
  arguments.push_back(text::format("-%@", argument));
  startApplication(arguments);
  GTMLogger::sharedLogger()->logDebug("Will launch Vornix with arguments %@",
                                      Value(arrayOf(arguments)));
}

void VNXLauncher::askRunningApplication(std::string_view argument,
                                        const std::vector<std::string>& files) {
  // It may have ended since it was asked for; the request goes out all the same.
  if (const auto application = runningApplication(services_.workspace, mainApplicationIdentifier))
    application->activateWithOptions(NSApplicationActivateIgnoringOtherApps);
  services_.distributedCenter().postNotificationName(
      text::format("com.orvane.vornix3.%@", argument), kNotificationObject,
      Dictionary{{"Files", arrayOf(files)}}, true);
}

void VNXLauncher::startApplication(const std::vector<std::string>& arguments) {
  const std::unique_ptr<NSTask> task = services_.makeTask();
  if (const auto error = task->launch(services_.openTool, arguments)) {
    GTMLogger::sharedLogger()->logError("Cannot run %@: %@", services_.openTool, *error);
    return;
  }
  task->waitUntilExit();
}

}  // namespace vornix
