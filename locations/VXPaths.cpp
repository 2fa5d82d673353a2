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
VXPaths::Field<T> VXPaths::cached(Field<T> Fields::*field, const Compute& compute) const {
  const Lock lock(mutex_);
  Field<T>& value = kept(field);
  if (!value) value = compute();
  return value;
}

template <typename T, typename Compute>
T VXPaths::cachedValue(Field<T> Fields::*field, const Compute& compute) const {
  const Lock lock(mutex_);
  Field<T>& value = kept(field);
  return value ? *value : value.emplace(compute());
}

template <typename T, typename Compute>
VXPaths::Field<T> VXPaths::cachedUnlocked(Field<T> Fields::*field, const Compute& compute) const {
  {
    const Lock lock(mutex_);
    if (const Field<T>& known = kept(field)) return known;
  }
  Field<T> computed = compute();
  const Lock lock(mutex_);
  Field<T>& value = kept(field);
  if (!value) value = std::move(computed);
  return value;
}

template <typename T>
void VXPaths::store(Field<T> Fields::*field, Field<T> value) {
  const Lock lock(mutex_);
  kept(field) = std::move(value);
}

NSURL VXPaths::userHome() const {
  return cachedValue(&Fields::userHome, [this] {
    return NSURL::fileURLWithPath(NSHomeDirectory(directories_), true);
  });
}

std::optional<NSURL> VXPaths::downloadsURL() const {
  return cached(&Fields::downloadsURL, [this] {
    return onlyOne(files_.URLsForDirectory(NSDownloadsDirectory, NSUserDomainMask));
  });
}

std::optional<NSURL> VXPaths::userLibraryURL() const {
  return cached(&Fields::userLibraryURL, [this] {
    return onlyOne(files_.URLsForDirectory(NSLibraryDirectory, NSUserDomainMask));
  });
}

std::optional<NSURL> VXPaths::userCaches() const {
  return cached(&Fields::userCaches, [this] {
    return onlyOne(files_.URLsForDirectory(NSCachesDirectory, NSUserDomainMask));
  });
}

std::optional<NSURL> VXPaths::allUsersCaches() const {
  return cached(&Fields::allUsersCaches, [this] {
    return onlyOne(files_.URLsForDirectory(NSCachesDirectory, NSLocalDomainMask));
  });
}

std::vector<std::string> VXPaths::libraryPaths() const {
  return cachedValue(&Fields::libraryPaths, [this] {
    return NSSearchPathForDirectoriesInDomains(
        NSLibraryDirectory, NSUserDomainMask | NSLocalDomainMask, true, directories_);
  });
}

std::vector<std::string> VXPaths::applicationSupportPaths() const {
  return cachedValue(&Fields::applicationSupportPaths, [this] {
    return NSSearchPathForDirectoriesInDomains(
        NSApplicationSupportDirectory, NSUserDomainMask | NSLocalDomainMask, true, directories_);
  });
}

std::string VXPaths::userTempPath() const {
  return cachedValue(&Fields::userTempPath, [this] {
    return stringByStandardizingPath(NSTemporaryDirectory(directories_), files_);
  });
}

std::optional<NSURL> VXPaths::darwinUserCaches() const {
  return cached(&Fields::darwinUserCaches, [this] { return computedDarwinUserCaches(); });
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
  return cachedUnlocked(&Fields::appPreferences, compute).value();
}

NSURL VXPaths::computedAppPreferences() const {
  const auto libraries =
      NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSUserDomainMask, true, directories_);
  if (libraries.empty()) GTMLogger::sharedLogger()->logDebug("Failed to get app preferences");
  const std::string name = text::format("/Preferences/%@.plist", mainBundle_.bundleIdentifier());
  return NSURL::fileURLWithPath(libraries.at(0) + name, false);
}

std::optional<std::string> VXPaths::applicationSupport() const {
  return cachedUnlocked(&Fields::applicationSupport,
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
  store(&Fields::userHome, std::move(url));
}

void VXPaths::setDownloadsURL(std::optional<NSURL> url) {
  store(&Fields::downloadsURL, std::move(url));
}

void VXPaths::setLibraryPaths(std::optional<std::vector<std::string>> paths) {
  store(&Fields::libraryPaths, std::move(paths));
}

void VXPaths::setUserLibraryURL(std::optional<NSURL> url) {
  store(&Fields::userLibraryURL, std::move(url));
}

void VXPaths::setApplicationSupportPaths(std::optional<std::vector<std::string>> paths) {
  store(&Fields::applicationSupportPaths, std::move(paths));
}

void VXPaths::setUserCaches(std::optional<NSURL> url) {
  store(&Fields::userCaches, std::move(url));
}

void VXPaths::setAllUsersCaches(std::optional<NSURL> url) {
  store(&Fields::allUsersCaches, std::move(url));
}

void VXPaths::setUserTempPath(std::optional<std::string> path) {
  store(&Fields::userTempPath, std::move(path));
}

void VXPaths::setDarwinUserCachesStorage(std::optional<NSURL> url) {
  store(&Fields::darwinUserCaches, std::move(url));
}

void VXPaths::setApplicationSupportStorage(std::optional<std::string> path) {
  store(&Fields::applicationSupport, std::move(path));
}

void VXPaths::setAppPreferencesStorage(std::optional<NSURL> url) {
  store(&Fields::appPreferences, std::move(url));
}

}  // namespace vornix
