#include "tools/ctl/LocationCatalogue.h"

#include <optional>
#include <string>
#include <utility>

namespace vornix::tools {
namespace {

using Places = std::vector<std::optional<std::string>>;

Places placesOf(std::string path) {
  return {std::move(path)};
}
Places placesOf(std::optional<std::string> path) {
  return {std::move(path)};
}
Places placesOf(const NSURL& url) {
  return {url.path()};
}
Places placesOf(const std::optional<NSURL>& url) {
  return {url ? std::optional(url->path()) : std::nullopt};
}
template <typename T>
Places placesOf(const std::vector<T>& several) {
  Places places;
  for (const auto& each : several) {
    for (auto& place : placesOf(each)) places.push_back(std::move(place));
  }
  return places;
}

struct Entry {
  std::string_view name;
  Places (*places)(const VXPaths& paths);
};

#define VORNIX_ENTRY(accessor)                                                 \
  Entry {                                                                      \
#accessor, [](const VXPaths& paths) { return placesOf(paths.accessor()); } \
  }

constexpr Entry kEntries[] = {
    VORNIX_ENTRY(userHome),
    VORNIX_ENTRY(downloadsURL),
    VORNIX_ENTRY(userLibraryURL),
    VORNIX_ENTRY(libraryPaths),
    VORNIX_ENTRY(applicationSupportPaths),
    VORNIX_ENTRY(userPreferences),
    VORNIX_ENTRY(localPreferences),
    VORNIX_ENTRY(preferences),
    VORNIX_ENTRY(appPreferences),
    VORNIX_ENTRY(userLogs),
    VORNIX_ENTRY(allUsersLogs),
    VORNIX_ENTRY(aslLogs),
    VORNIX_ENTRY(userCaches),
    VORNIX_ENTRY(allUsersCaches),
    VORNIX_ENTRY(darwinUserCaches),
    VORNIX_ENTRY(userTempPath),
    VORNIX_ENTRY(userPrefPanesURL),
    VORNIX_ENTRY(allUsersPrefPanesURL),
    VORNIX_ENTRY(userScriptingAdditionsURL),
    VORNIX_ENTRY(allUsersScriptingAdditionsURL),
    VORNIX_ENTRY(launchAgentsPath),
    VORNIX_ENTRY(systemLaunchAgentsPath),
    VORNIX_ENTRY(systemCoreLaunchAgentsPath),
    VORNIX_ENTRY(launchDaemonsPath),
    VORNIX_ENTRY(sandboxContainer),
    VORNIX_ENTRY(sandboxGroupContainer),
    VORNIX_ENTRY(systemTrash),
    VORNIX_ENTRY(mailPluginsURL),
    VORNIX_ENTRY(localKextURL),
    VORNIX_ENTRY(systemKextURL),
    VORNIX_ENTRY(systemPlugInFolders),
    VORNIX_ENTRY(applicationSupport),
    VORNIX_ENTRY(vnxLogFolderURL),
    VORNIX_ENTRY(vnxLogFolderPath),
    VORNIX_ENTRY(apertureRecentLibraryPath),
    VORNIX_ENTRY(iPhotoRecentLibraryPath),
    VORNIX_ENTRY(recentPhotosLibraryPath),
};

#undef VORNIX_ENTRY

}  // namespace

std::vector<Location> locationCatalogue(const VXPaths& paths, const NSFileManager& files) {
  // Whoever has the log folder made is answered none; a person wants to know where it is.
  (void)paths.vnxLogFolderURL();
  std::vector<Location> locations;
  for (const auto& entry : kEntries) {
    for (auto& path : entry.places(paths)) locations.push_back({entry.name, std::move(path)});
  }
  // Only now, since being asked makes some folders.
  for (auto& location : locations) {
    location.exists = location.path && files.fileExistsAtPath(*location.path);
  }
  return locations;
}

}  // namespace vornix::tools
