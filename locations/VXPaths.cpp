#include "locations/VXPaths.h"

#include <array>
#include <utility>

#include "locations/NSFileManager+DirectoryLocations.h"
#include "logging/GTMLogger.h"
#include "platform/files/NSFileManager.h"
#include "platform/files/NSPathUtilities.h"
#include "platform/system/NSBundle.h"
#include "platform/system/ResourceFiles.h"

namespace vornix {
namespace {

// The configuration's name for the folder of this person's caches.
constexpr int kUserCacheDirectory = 65538;
constexpr std::string_view kFamilyFolder = "com.orvane.Vornix3";

std::optional<NSURL> onlyOne(const std::vector<NSURL>& urls) {
  return urls.size() == 1 ? std::optional(urls.front()) : std::nullopt;
}

}  // namespace

VXPaths::VXPaths(NSFileManager& files, const NSBundle& mainBundle, const ResourceFiles& resources)
    : files_(files),
      directories_(files.standardDirectories()),
      mainBundle_(mainBundle),
      resources_(resources) {}

VXPaths& VXPaths::sharedInstance() {
  static auto& paths =
      *new VXPaths(NSFileManager::defaultManager(), NSBundle::mainBundle(), sharedResourceFiles());
  return paths;
}

template <typename T, typename Compute>
VXPaths::Field<T> VXPaths::cached(Field<T>& field, const Compute& compute) const {
  const std::lock_guard lock(mutex_);
  if (!field) field = compute();
  return field;
}

template <typename T, typename Compute>
T VXPaths::cachedValue(Field<T>& field, const Compute& compute) const {
  const std::lock_guard lock(mutex_);
  return field ? *field : field.emplace(compute());
}

template <typename T, typename Compute>
VXPaths::Field<T> VXPaths::cachedUnlocked(Field<T>& field, const Compute& compute) const {
  {
    const std::lock_guard lock(mutex_);
    if (field) return field;
  }
  Field<T> value = compute();
  const std::lock_guard lock(mutex_);
  if (!field) field = std::move(value);
  return field;
}

template <typename T>
void VXPaths::store(Field<T>& field, Field<T> value) {
  const std::lock_guard lock(mutex_);
  field = std::move(value);
}

NSURL VXPaths::userHome() const {
  return cachedValue(
      userHome_, [this] { return NSURL::fileURLWithPath(NSHomeDirectory(directories_), true); });
}

std::optional<NSURL> VXPaths::downloadsURL() const {
  return cached(downloadsURL_, [this] {
    return onlyOne(files_.URLsForDirectory(NSDownloadsDirectory, NSUserDomainMask));
  });
}

std::optional<NSURL> VXPaths::userLibraryURL() const {
  return cached(userLibraryURL_, [this] {
    return onlyOne(files_.URLsForDirectory(NSLibraryDirectory, NSUserDomainMask));
  });
}

std::optional<NSURL> VXPaths::userCaches() const {
  return cached(userCaches_, [this] {
    return onlyOne(files_.URLsForDirectory(NSCachesDirectory, NSUserDomainMask));
  });
}

std::optional<NSURL> VXPaths::allUsersCaches() const {
  return cached(allUsersCaches_, [this] {
    return onlyOne(files_.URLsForDirectory(NSCachesDirectory, NSLocalDomainMask));
  });
}

std::vector<std::string> VXPaths::libraryPaths() const {
  return cachedValue(libraryPaths_, [this] {
    return NSSearchPathForDirectoriesInDomains(
        NSLibraryDirectory, NSUserDomainMask | NSLocalDomainMask, true, directories_);
  });
}

std::vector<std::string> VXPaths::applicationSupportPaths() const {
  return cachedValue(applicationSupportPaths_, [this] {
    return NSSearchPathForDirectoriesInDomains(
        NSApplicationSupportDirectory, NSUserDomainMask | NSLocalDomainMask, true, directories_);
  });
}

std::string VXPaths::userTempPath() const {
  return cachedValue(userTempPath_, [this] {
    return stringByStandardizingPath(NSTemporaryDirectory(directories_), files_);
  });
}

std::optional<NSURL> VXPaths::darwinUserCaches() const {
  return cached(darwinUserCaches_, [this] { return computedDarwinUserCaches(); });
}

std::optional<NSURL> VXPaths::computedDarwinUserCaches() const {
  std::array<char, 1024> buffer{};
  const std::size_t length = directories_.confstr(kUserCacheDirectory, buffer);
  // One that was cut would lead elsewhere.
  if (length <= 1 || length > buffer.size()) return std::nullopt;
  return NSURL::fileURLWithPath(std::string_view(buffer.data(), length - 1), true);
}

NSURL VXPaths::appPreferences() const {
  const auto compute = [this] { return std::optional(computedAppPreferences()); };
  return cachedUnlocked(appPreferences_, compute).value();
}

NSURL VXPaths::computedAppPreferences() const {
  const auto libraries =
      NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSUserDomainMask, true, directories_);
  if (libraries.empty()) GTMLogger::sharedLogger()->logDebug("Failed to get app preferences");
  const std::string name = text::format("/Preferences/%@.plist", mainBundle_.bundleIdentifier());
  return NSURL::fileURLWithPath(libraries.at(0) + name, false);
}

std::optional<std::string> VXPaths::applicationSupport() const {
  return cachedUnlocked(applicationSupport_,
                        [this] { return userApplicationSupportDirectory(files_); });
}

std::optional<NSURL> VXPaths::vnxLogFolderURL() const {
  const auto libraries = files_.URLsForDirectory(NSLibraryDirectory, NSUserDomainMask);
  if (libraries.empty()) return std::nullopt;
  const NSURL folder = libraries.front()
                           .URLByAppendingPathComponent("Logs", files_)
                           .URLByAppendingPathComponent(kFamilyFolder, files_);
  if (folder.checkResourceIsReachableAndReturnError(files_, nullptr)) return folder;
  // The family's programs know this outcome and rely on it.
  if (!files_.createDirectoryAtPath(folder.path(), false)) return folder;
  GTMLogger::sharedLogger()->logDebug("Failed to create directory %@", folder.description());
  return std::nullopt;
}

std::optional<std::string> VXPaths::vnxLogFolderPath() const {
  const auto url = vnxLogFolderURL();
  return url ? std::optional(url->path()) : std::nullopt;
}

void VXPaths::setUserHomeStorage(std::optional<NSURL> url) {
  store(userHome_, std::move(url));
}

void VXPaths::setDownloadsURL(std::optional<NSURL> url) {
  store(downloadsURL_, std::move(url));
}

void VXPaths::setLibraryPaths(std::optional<std::vector<std::string>> paths) {
  store(libraryPaths_, std::move(paths));
}

void VXPaths::setUserLibraryURL(std::optional<NSURL> url) {
  store(userLibraryURL_, std::move(url));
}

void VXPaths::setApplicationSupportPaths(std::optional<std::vector<std::string>> paths) {
  store(applicationSupportPaths_, std::move(paths));
}

void VXPaths::setUserCaches(std::optional<NSURL> url) {
  store(userCaches_, std::move(url));
}

void VXPaths::setAllUsersCaches(std::optional<NSURL> url) {
  store(allUsersCaches_, std::move(url));
}

void VXPaths::setUserTempPath(std::optional<std::string> path) {
  store(userTempPath_, std::move(path));
}

void VXPaths::setDarwinUserCachesStorage(std::optional<NSURL> url) {
  store(darwinUserCaches_, std::move(url));
}

void VXPaths::setApplicationSupportStorage(std::optional<std::string> path) {
  store(applicationSupport_, std::move(path));
}

void VXPaths::setAppPreferencesStorage(std::optional<NSURL> url) {
  store(appPreferences_, std::move(url));
}

}  // namespace vornix
