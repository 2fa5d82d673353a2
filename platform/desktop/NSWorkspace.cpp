#include "platform/desktop/NSWorkspace.h"

#include <utility>

#include "platform/base/FileUrl.h"

namespace vornix {
namespace {

constexpr std::int64_t kUnsupportedScheme = 262;

NSError notAFileUrl(std::string_view url) {
  return {.domain = std::string(NSCocoaErrorDomain),
          .code = kUnsupportedScheme,
          .localizedDescription =
              "The URL \"" + std::string(url) + "\" does not name an application on this machine."};
}

}  // namespace

NSRunningApplication::NSRunningApplication(RunningApplicationEntry entry,
                                           ApplicationService& service)
    : entry_(std::move(entry)), service_(service) {}

bool NSRunningApplication::activateWithOptions(std::uint32_t /*options*/) {
  return service_.activate(entry_);
}

bool NSRunningApplication::terminate() {
  return service_.terminate(entry_);
}

bool NSRunningApplication::isEqual(const NSObject& other) const {
  const auto* application = dynamic_cast<const NSRunningApplication*>(&other);
  return application != nullptr && application->entry_ == entry_;
}

NSWorkspace::NSWorkspace(ApplicationService& service, FileViewer& viewer)
    : service_(service), viewer_(viewer) {}

NSWorkspace& NSWorkspace::sharedWorkspace() {
  static const auto& workspace =
      *new std::shared_ptr<NSWorkspace>(std::make_shared<NSWorkspace>(sharedApplicationService()));
  return *workspace;
}

std::vector<std::shared_ptr<NSRunningApplication>> NSWorkspace::runningApplications() {
  std::vector<std::shared_ptr<NSRunningApplication>> applications;
  for (RunningApplicationEntry& entry : service_.runningApplications())
    applications.push_back(std::make_shared<NSRunningApplication>(std::move(entry), service_));
  return applications;
}

std::optional<std::string> NSWorkspace::absolutePathForAppBundleWithIdentifier(
    std::string_view identifier) {
  return service_.applicationPath(identifier);
}

std::shared_ptr<NSRunningApplication> NSWorkspace::launchApplicationAtURL(
    std::string_view fileUrl, std::uint32_t options, const Dictionary& /*configuration*/,
    std::optional<NSError>* error) {
  std::optional<NSError> problem;
  std::optional<RunningApplicationEntry> entry;
  if (auto path = text::pathOfFileUrl(fileUrl)) {
    ApplicationLaunch launch{.bundlePath = *std::move(path), .files = {}, .arguments = {}};
    launch.activate = (options & NSWorkspaceLaunchWithoutActivation) == 0;
    entry = service_.launch(launch, problem);
  } else {
    problem = notAFileUrl(fileUrl);
  }
  if (error != nullptr) *error = std::move(problem);
  return entry ? std::make_shared<NSRunningApplication>(*std::move(entry), service_) : nullptr;
}

bool NSWorkspace::selectFileInFileViewerRootedAtPath(std::string_view file,
                                                     std::string_view /*root*/) {
  return viewer_.select(file);
}

}  // namespace vornix
