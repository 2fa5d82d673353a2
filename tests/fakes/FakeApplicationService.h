#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/desktop/ApplicationService.h"

namespace vornix::fakes {

// A desktop in memory: installed applications by identifier, running ones as a list, and a record
// of what was asked.
class FakeApplicationService final : public ApplicationService {
 public:
  [[nodiscard]] std::vector<RunningApplicationEntry> runningApplications() override;
  [[nodiscard]] std::optional<std::string> applicationPath(std::string_view identifier) override;
  bool activate(const RunningApplicationEntry& application) override;
  bool terminate(const RunningApplicationEntry& application) override;
  [[nodiscard]] std::optional<RunningApplicationEntry> launch(
      const ApplicationLaunch& request, std::optional<NSError>& error) override;
  [[nodiscard]] std::string openToolPath() const override { return openTool; }

  // Puts an application into the list; answers its entry.
  RunningApplicationEntry run(const std::string& identifier);
  // Answers the path of its bundle.
  std::string install(const std::string& identifier);

  std::vector<RunningApplicationEntry> running;
  // Identifier and bundle path.
  std::vector<std::pair<std::string, std::string>> installed;
  // What the next launches answer beside the application, or instead of it.
  std::optional<NSError> launchError;
  bool launchFails = false;
  // What `terminate` answers.
  bool terminates = true;
  std::string openTool = "/opt/vornix/libexec/vornix/vornix-open";

  int listsAsked = 0;
  std::vector<RunningApplicationEntry> activated;
  std::vector<RunningApplicationEntry> terminated;
  std::vector<ApplicationLaunch> launched;

 private:
  [[nodiscard]] const std::string* identifierOf(const std::string& path) const;

  std::int32_t nextProcess_ = 1000;
};

// The one that `sharedApplicationService` answers on the fake platform.
FakeApplicationService& processApplications();

}  // namespace vornix::fakes
