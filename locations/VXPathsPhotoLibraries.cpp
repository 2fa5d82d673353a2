#include "locations/VXPaths.h"
#include "platform/base/PathText.h"
#include "platform/files/NSFileManager.h"
#include "platform/files/NSPathUtilities.h"
#include "platform/files/PropertyListFile.h"

namespace vornix {
namespace {

constexpr std::string_view kSharedLibraries = "~/Library/Preferences/com.apple.iApps.plist";
constexpr std::string_view kPhotosPreferences =
    "~/Library/Containers/com.apple.Photos/Data/Library/Preferences/com.apple.Photos.plist";
// Without a window for the person, and without mounting anything.
constexpr std::uint32_t kQuietResolution = 0x100 | 0x200;

// The folder that holds what a URL's text leads to.
std::optional<std::string> folderOfUrl(const Value* url) {
  const auto* text = url != nullptr ? url->as<std::string>() : nullptr;
  const auto parsed = text != nullptr ? NSURL::URLWithString(*text) : std::nullopt;
  if (!parsed || parsed->path().empty()) return std::nullopt;
  return text::deletingLastPathComponent(parsed->path());
}

}  // namespace

std::optional<std::string> VXPaths::apertureRecentLibraryPath() const {
  const auto list = dictionaryWithContentsOfFile(
      stringByExpandingTildeInPath(kSharedLibraries, directories_), resources_);
  return list ? folderOfUrl(list->find("ApertureLastOpenedDatabase")) : std::nullopt;
}

std::optional<std::string> VXPaths::iPhotoRecentLibraryPath() const {
  const auto list = dictionaryWithContentsOfFile(
      stringByExpandingTildeInPath(kSharedLibraries, directories_), resources_);
  const Value* recent = list ? list->find("iPhotoRecentDatabases") : nullptr;
  const auto* databases = recent != nullptr ? recent->as<Array>() : nullptr;
  if (databases == nullptr || databases->empty()) return std::nullopt;
  return folderOfUrl(&databases->front());
}

std::optional<std::string> VXPaths::recentPhotosLibraryPath() const {
  const auto list = dictionaryWithContentsOfFile(
      stringByExpandingTildeInPath(kPhotosPreferences, directories_), resources_);
  const Value* bookmark = list ? list->find("IPXDefaultLibraryURLBookmark") : nullptr;
  const auto* data = bookmark != nullptr ? bookmark->as<Data>() : nullptr;
  if (data == nullptr) return std::nullopt;
  const auto url = NSURL::URLByResolvingBookmarkData(*data, kQuietResolution, files_);
  return url ? std::optional(url->path()) : std::nullopt;
}

}  // namespace vornix
