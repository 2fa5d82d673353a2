#include "foundation/NSWorkspace+LaunchedApplications.h"

#include <algorithm>

#include "logging/GTMLogger.h"
#include "platform/base/FileUrl.h"
#include "platform/base/Text.h"

namespace vornix {
namespace {

std::shared_ptr<NSRunningApplication> firstApplication(NSWorkspace& workspace,
                                                       std::string_view bundleID) {
  // The empty identifier is that of applications that cannot be named.
  if (bundleID.empty()) return nullptr;
  const auto applications = workspace.runningApplications();
  const auto found = std::ranges::find(
      applications, bundleID,
      [](const auto& application) -> std::string_view { return application->bundleIdentifier(); });
  return found == applications.end() ? nullptr : *found;
}

bool launchApplication(NSWorkspace& workspace, std::string_view bundleID, std::uint32_t options) {
  const auto path = workspace.absolutePathForAppBundleWithIdentifier(bundleID);
  const auto url = path ? text::fileUrlWithPath(*path, true) : std::nullopt;
  if (!url) return false;
  std::optional<NSError> error;
  const auto application = workspace.launchApplicationAtURL(*url, options, Dictionary(), &error);
  if (error)
    GTMLogger::sharedLogger()->logDebug("Failed to launch app %@ with error %@", *url, *error);
  return application != nullptr;
}

}  // namespace

bool isApplicationRunning(NSWorkspace& self, std::optional<std::string_view> bundleID) {
  return bundleID && runningApplication(self, *bundleID) != nullptr;
}

std::shared_ptr<NSRunningApplication> runningApplication(NSWorkspace& /*self*/,
                                                         std::string_view bundleID) {
  return firstApplication(NSWorkspace::sharedWorkspace(), bundleID);
}

std::vector<std::shared_ptr<NSRunningApplication>> runningApplicationsWithBundleID(
    NSWorkspace& self, std::string_view bundleID) {
  if (bundleID.empty()) return {};
  auto applications = self.runningApplications();
  std::erase_if(applications, [bundleID](const auto& application) {
    return !text::asciiEqualIgnoringCase(application->bundleIdentifier(), bundleID);
  });
  return applications;
}

bool launchApplicationWithBundleID(NSWorkspace& self, std::string_view bundleID) {
  return launchApplication(self, bundleID, VXForegroundLaunchOptions);
}

bool launchApplicationInBackgroundWithBundleID(NSWorkspace& self, std::string_view bundleID) {
  return launchApplication(self, bundleID, VXBackgroundLaunchOptions);
}

bool terminateApplicationWithBundleID(NSWorkspace& self, std::string_view bundleID,
                                      std::shared_ptr<NSRunningApplication>* forApplication) {
  const auto application = firstApplication(self, bundleID);
  if (application == nullptr) return false;
  if (forApplication != nullptr) *forApplication = application;
  return application->terminate();
}

}  // namespace vornix
