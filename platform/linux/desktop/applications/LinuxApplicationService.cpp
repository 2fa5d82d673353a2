#include "platform/linux/desktop/applications/LinuxApplicationService.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

#include "platform/linux/desktop/ActivationToken.h"
#include "platform/linux/desktop/applications/ApplicationStart.h"
#include "platform/linux/desktop/applications/RunningApplications.h"
#include "platform/linux/desktop/applications/SessionApplicationBus.h"

namespace vornix::desktop {
namespace {

NSError unusableEntry(const std::string& path, const std::string& problem) {
  NSError error = posixError(ENOENT, path);
  error.filePath = path;
  if (!problem.empty()) error.localizedDescription = problem;
  return error;
}

class LinuxApplicationService final : public ApplicationService {
 public:
  LinuxApplicationService(DesktopSession session, ApplicationBus& bus, WindowActivation& windows)
      : session_(std::move(session)),
        bus_(bus),
        windows_(windows),
        installed_(session_.installedApplications()),
        processes_(session_.processTable()) {}

  [[nodiscard]] std::vector<RunningApplicationEntry> runningApplications() override {
    return findRunningApplications(installed_, processes_, bus_, session_.busAddress);
  }

  [[nodiscard]] std::optional<std::string> applicationPath(std::string_view identifier) override {
    const auto entry = installed_.find(identifier);
    return entry ? std::optional(entry->path) : std::nullopt;
  }

  bool activate(const RunningApplicationEntry& application) override {
    const std::string& identifier = application.bundleIdentifier;
    const auto names = bus_.ownedNames();
    const bool isOnBus = std::ranges::find(names, identifier) != names.end();
    if (isOnBus && bus_.activate(identifier, takeToken())) return true;
    return windows_.bringToFront(application.processIdentifier, identifier);
  }

  bool terminate(const RunningApplicationEntry& application) override {
    // Numbers up to 0 stand for whole groups of processes.
    const std::int32_t process = application.processIdentifier;
    return process > 0 && kill(process, SIGTERM) == 0;
  }

  [[nodiscard]] std::optional<RunningApplicationEntry> launch(
      const ApplicationLaunch& request, std::optional<NSError>& error) override {
    error.reset();
    std::string problem;
    const auto entry = installed_.atPath(request.bundlePath, problem);
    if (!entry) {
      error = unusableEntry(request.bundlePath, problem);
      return std::nullopt;
    }
    const auto running = request.newInstance ? std::nullopt : runningInstance(entry->identifier);
    if (running && request.activate) activate(*running);
    return running ? running : start(*entry, request, error);
  }

  [[nodiscard]] std::string openToolPath() const override { return session_.openTool; }

 private:
  [[nodiscard]] std::string takeToken() {
    std::string token = bus_.takeActivationToken();
    return token.empty() ? activationTokenOf(session_.environment) : token;
  }

  [[nodiscard]] std::optional<RunningApplicationEntry> runningInstance(
      const std::string& identifier) {
    const auto running = runningApplications();
    const auto found =
        std::ranges::find(running, identifier, &RunningApplicationEntry::bundleIdentifier);
    return found == running.end() ? std::nullopt : std::optional(*found);
  }

  [[nodiscard]] std::optional<RunningApplicationEntry> start(const DesktopEntry& entry,
                                                             const ApplicationLaunch& request,
                                                             std::optional<NSError>& error) {
    const ApplicationStartRequest start{
        .files = request.files,
        .arguments = request.arguments,
        .activationToken = request.activate ? takeToken() : std::string()};
    const auto process = startApplication(entry, start, session_, bus_, error);
    if (!process) return std::nullopt;
    return RunningApplicationEntry{entry.identifier, *process, processes_.launchDateOf(*process)};
  }

  DesktopSession session_;
  ApplicationBus& bus_;
  WindowActivation& windows_;
  InstalledApplications installed_;
  ProcessTable processes_;
};

}  // namespace

std::unique_ptr<ApplicationService> makeApplicationService(DesktopSession session,
                                                           ApplicationBus& bus,
                                                           WindowActivation& windows) {
  return std::make_unique<LinuxApplicationService>(std::move(session), bus, windows);
}

}  // namespace vornix::desktop

namespace vornix {

ApplicationService& sharedApplicationService() {
  static auto& service =
      *desktop::makeApplicationService(
           desktop::DesktopSession::ofProcess(NSProcessInfo::processInfo()),
           desktop::sharedApplicationBus(), *desktop::makeX11WindowActivation().release())
           .release();
  return service;
}

}  // namespace vornix
