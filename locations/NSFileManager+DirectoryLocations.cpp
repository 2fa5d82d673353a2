#include "locations/NSFileManager+DirectoryLocations.h"

#include <algorithm>
#include <vector>

#include "logging/GTMLogger.h"
#include "platform/base/PathText.h"
#include "platform/base/Text.h"
#include "platform/files/NSPathUtilities.h"
#include "platform/system/NSBundle.h"

namespace vornix {
namespace {

constexpr std::uint32_t kOwnerOnly = 0700;
constexpr std::string_view kNoPath = "No path found for directory in domain.";
constexpr std::string_view kFileExists = "File exists at requested directory location.";

NSError locationError(std::int64_t code, std::string description, NSSearchPathDirectory kind,
                      NSSearchPathDomainMask domain) {
  return {.domain = std::string(DirectoryLocationDomain),
          .code = code,
          .localizedDescription = std::move(description),
          .userInfo = {{"NSSearchPathDirectory", kind}, {"NSSearchPathDomainMask", domain}}};
}

// The outcome of a search, one of the two set.
struct Found {
  std::optional<std::string> path;
  std::optional<NSError> error;
};

Found folderAt(NSFileManager& files, std::string path, NSSearchPathDirectory kind,
               NSSearchPathDomainMask domain) {
  bool isFolder = false;
  if (files.fileExistsAtPath(path, &isFolder)) {
    if (isFolder) return {std::move(path), std::nullopt};
    const NSBundle& bundle = NSBundle::mainBundle();
    return {std::nullopt,
            locationError(DirectoryLocationError::FileExistsAtLocation,
                          bundle.localizedStringForKey(kFileExists, "", ""), kind, domain)};
  }
  std::optional<NSError> error;
  if (!files.createDirectoryAtPath(path, true, &error)) return {std::nullopt, std::move(error)};
  return {std::move(path), std::nullopt};
}

Found find(NSFileManager& files, NSSearchPathDirectory kind, NSSearchPathDomainMask domain,
           std::optional<std::string_view> component) {
  const auto paths =
      NSSearchPathForDirectoriesInDomains(kind, domain, true, files.standardDirectories());
  if (paths.empty()) {
    return {std::nullopt,
            locationError(DirectoryLocationError::NoPathFound, std::string(kNoPath), kind, domain)};
  }
  std::string path =
      component ? text::appendingPathComponent(paths.front(), *component) : paths.front();
  return folderAt(files, std::move(path), kind, domain);
}

// Anything else would have the temporary folder, or what is above it, removed.
bool namesSomethingInside(std::string_view name) {
  const auto steps = text::split(name, "/");
  const bool goesUp = std::ranges::find(steps, "..") != steps.end();
  return !goesUp && std::ranges::any_of(steps, [](const std::string& step) {
    return !step.empty() && step != ".";
  });
}

bool isOwnersOnly(const NSFileManager& files, const std::string& path) {
  const auto status = files.attributesOfItemAtPath(path);
  return status && status->type == FileType::directory && status->isOwn &&
         status->permissions == kOwnerOnly;
}

}  // namespace

std::optional<std::string> findOrCreateDirectory(
    NSFileManager& self, NSSearchPathDirectory searchPathDirectory, NSSearchPathDomainMask inDomain,
    std::optional<std::string_view> appendPathComponent, std::optional<NSError>* error) {
  Found found = find(self, searchPathDirectory, inDomain, appendPathComponent);
  if (error != nullptr) *error = std::move(found.error);
  return std::move(found.path);
}

std::optional<std::string> userApplicationSupportDirectoryWithAppName(
    NSFileManager& self, std::optional<std::string_view> appName) {
  const Found found = find(self, NSApplicationSupportDirectory, NSUserDomainMask, appName);
  if (found.error) {
    GTMLogger::sharedLogger()->logDebug(
        "Unable to find or create application support directory:\n%@", *found.error);
  }
  return found.path;
}

std::optional<std::string> userApplicationSupportDirectory(NSFileManager& self) {
  const auto value = NSBundle::mainBundle().objectForInfoDictionaryKey("CFBundleExecutable");
  const auto* name = value ? value->as<std::string>() : nullptr;
  return userApplicationSupportDirectoryWithAppName(
      self, name != nullptr ? std::optional<std::string_view>(*name) : std::nullopt);
}

std::optional<std::string> temporaryDirectoryWithName(NSFileManager& self, std::string_view name) {
  std::string path =
      text::appendingPathComponent(NSTemporaryDirectory(self.standardDirectories()), name);
  const auto logger = GTMLogger::sharedLogger();
  const bool isUsable = namesSomethingInside(name);
  // Links that lead nowhere stand in the way, too.
  const bool isTaken = !isUsable || self.attributesOfItemAtPath(path).has_value();
  if (isTaken && !(isUsable && self.removeItemAtPath(path))) {
    logger->logDebug("Failed to remove directory %@", path);
    return std::nullopt;
  }
  // Where everyone may write, somebody else may have made it in between.
  if (!self.createDirectoryAtPath(path, true, kOwnerOnly) || !isOwnersOnly(self, path)) {
    logger->logDebug("Failed to create directory %@", path);
    return std::nullopt;
  }
  return path;
}

}  // namespace vornix
