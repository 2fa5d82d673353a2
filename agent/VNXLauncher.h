#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/NSObject.h"
#include "platform/desktop/NSDistributedNotificationCenter.h"
#include "platform/desktop/NSWorkspace.h"
#include "platform/system/NSTask.h"

namespace vornix {

// Hands a request to the main application: to the running one as a distributed notification, else
// on the command line of a fresh one. Main thread.
class VNXLauncher : public NSObject {
 public:
  // What a launch works with. The services must outlive the launcher.
  struct Services {
    NSWorkspace& workspace;
    // Asked only when the main application is running.
    std::function<NSDistributedNotificationCenter&()> distributedCenter;
    std::function<std::unique_ptr<NSTask>()> makeTask;
    // The program that opens an application by its identifier.
    std::string openTool;
  };

  static constexpr std::string_view mainApplicationIdentifier = "com.orvane.Vornix3";

  explicit VNXLauncher(Services services);

  // On the process's own services.
  static void launchVNXWithArgument(std::string_view argument,
                                    const std::optional<std::vector<std::string>>& files);

  // `argument`: the request word; absent `files` count as none. Starting blocks until the open tool
  // has ended, turning the run loop meanwhile. Whether the application came up is not known.
  void launch(std::string_view argument, const std::optional<std::vector<std::string>>& files);

  [[nodiscard]] std::string_view className() const override { return "VNXLauncher"; }

 private:
  void askRunningApplication(std::string_view argument, const std::vector<std::string>& files);
  void startApplication(const std::vector<std::string>& arguments);

  Services services_;
};

}  // namespace vornix
