#include "tests/fakes/FakeApplicationService.h"

#include <algorithm>

#include "platform/base/Text.h"

namespace vornix::fakes {

std::vector<RunningApplicationEntry> FakeApplicationService::runningApplications() {
  ++listsAsked;
  return running;
}

std::optional<std::string> FakeApplicationService::applicationPath(std::string_view identifier) {
  for (const auto& [name, path] : installed) {
    if (text::asciiEqualIgnoringCase(name, identifier)) return path;
  }
  return std::nullopt;
}

bool FakeApplicationService::activate(const RunningApplicationEntry& application) {
  activated.push_back(application);
  return std::ranges::find(running, application) != running.end();
}

bool FakeApplicationService::terminate(const RunningApplicationEntry& application) {
  if (!terminates || std::ranges::find(running, application) == running.end()) return false;
  terminated.push_back(application);
  std::erase(running, application);
  return true;
}

std::optional<RunningApplicationEntry> FakeApplicationService::launch(
    const ApplicationLaunch& request, std::optional<NSError>& error) {
  launched.push_back(request);
  error = launchError;
  const std::string* identifier = identifierOf(request.bundlePath);
  if (identifier == nullptr && !error) error = posixError(2, request.bundlePath);
  if (identifier == nullptr || launchFails) return std::nullopt;
  const auto found =
      std::ranges::find(running, *identifier, &RunningApplicationEntry::bundleIdentifier);
  if (found == running.end() || request.newInstance) return run(*identifier);
  if (request.activate) activated.push_back(*found);
  return *found;
}

RunningApplicationEntry FakeApplicationService::run(const std::string& identifier) {
  const std::int32_t process = nextProcess_++;
  running.push_back({identifier, process, Date{static_cast<double>(process)}});
  return running.back();
}

std::string FakeApplicationService::install(const std::string& identifier) {
  installed.emplace_back(identifier, "/usr/share/applications/" + identifier + ".desktop");
  return installed.back().second;
}

const std::string* FakeApplicationService::identifierOf(const std::string& path) const {
  for (const auto& [identifier, bundle] : installed) {
    if (bundle == path) return &identifier;
  }
  return nullptr;
}

}  // namespace vornix::fakes
