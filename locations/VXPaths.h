#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/files/NSURL.h"

namespace vornix {

class NSBundle;
class NSFileManager;
class ResourceFiles;
class StandardDirectories;

// The catalogue of well-known places in the file system. What is said to be cached is computed at
// the first call that finds a value, and never again; a missing value is looked for again with each
// call. Everything else is computed with every call. Nothing is said about whether a place exists.
// Any thread.
class VXPaths {
 public:
  // Whose services it uses must outlive it.
  VXPaths(NSFileManager& files, const NSBundle& mainBundle, const ResourceFiles& resources);
  VXPaths(const VXPaths&) = delete;
  VXPaths& operator=(const VXPaths&) = delete;
  ~VXPaths() = default;

  // The process's own, never destroyed.
  [[nodiscard]] static VXPaths& sharedInstance();

  // The person's home. Cached.
  [[nodiscard]] NSURL userHome() const;

  // From the standard directory search; none unless it finds exactly one. Cached.
  [[nodiscard]] std::optional<NSURL> downloadsURL() const;
  [[nodiscard]] std::optional<NSURL> userLibraryURL() const;
  [[nodiscard]] std::optional<NSURL> userCaches() const;
  [[nodiscard]] std::optional<NSURL> allUsersCaches() const;
  // All that the search finds, the person's first. Cached, also when there is none.
  [[nodiscard]] std::vector<std::string> libraryPaths() const;
  [[nodiscard]] std::vector<std::string> applicationSupportPaths() const;

  [[nodiscard]] NSURL userPreferences() const;
  [[nodiscard]] static NSURL localPreferences();
  // The machine's, then the person's.
  [[nodiscard]] std::vector<NSURL> preferences() const;
  // The file that holds this program's preferences. Cached. Throws `std::out_of_range` where the
  // search finds no library folder; ours always finds one.
  [[nodiscard]] NSURL appPreferences() const;

  [[nodiscard]] NSURL userLogs() const;
  [[nodiscard]] static NSURL allUsersLogs();
  [[nodiscard]] static NSURL aslLogs();

  // The system's folder for this person's caches; none where it has none. Cached.
  [[nodiscard]] std::optional<NSURL> darwinUserCaches() const;
  // The folder for temporary files, without a slash at its end. Cached.
  [[nodiscard]] std::string userTempPath() const;

  [[nodiscard]] NSURL userPrefPanesURL() const;
  [[nodiscard]] static NSURL allUsersPrefPanesURL();
  [[nodiscard]] NSURL userScriptingAdditionsURL() const;
  [[nodiscard]] static NSURL allUsersScriptingAdditionsURL();
  [[nodiscard]] NSURL launchAgentsPath() const;
  [[nodiscard]] static NSURL systemLaunchAgentsPath();
  [[nodiscard]] static NSURL systemCoreLaunchAgentsPath();
  [[nodiscard]] static NSURL launchDaemonsPath();
  [[nodiscard]] NSURL sandboxContainer() const;
  [[nodiscard]] NSURL sandboxGroupContainer() const;
  [[nodiscard]] NSURL systemTrash() const;
  [[nodiscard]] NSURL mailPluginsURL() const;
  [[nodiscard]] static NSURL localKextURL();
  [[nodiscard]] static NSURL systemKextURL();
  // System-wide folders for plug-ins of all kinds.
  [[nodiscard]] static std::vector<std::string> systemPlugInFolders();

  // This program's own folder for its data, made when it is missing; none when it cannot be made.
  // Cached.
  [[nodiscard]] std::optional<std::string> applicationSupport() const;

  // The family's folder for logs. A missing one is made, once its parent exists: the call that
  // makes it answers none, and when it cannot be made the answer is a folder that does not exist.
  [[nodiscard]] std::optional<NSURL> vnxLogFolderURL() const;
  [[nodiscard]] std::optional<std::string> vnxLogFolderPath() const;

  // The libraries that were last used: the folder that holds the first two, and the third itself.
  [[nodiscard]] std::optional<std::string> apertureRecentLibraryPath() const;
  [[nodiscard]] std::optional<std::string> iPhotoRecentLibraryPath() const;
  [[nodiscard]] std::optional<std::string> recentPhotosLibraryPath() const;

  // From now on the given value is the answer; none has it computed again.
  void setUserHomeStorage(std::optional<NSURL> url);
  void setDownloadsURL(std::optional<NSURL> url);
  void setLibraryPaths(std::optional<std::vector<std::string>> paths);
  void setUserLibraryURL(std::optional<NSURL> url);
  void setApplicationSupportPaths(std::optional<std::vector<std::string>> paths);
  void setUserCaches(std::optional<NSURL> url);
  void setAllUsersCaches(std::optional<NSURL> url);
  void setUserTempPath(std::optional<std::string> path);
  void setDarwinUserCachesStorage(std::optional<NSURL> url);
  void setApplicationSupportStorage(std::optional<std::string> path);
  void setAppPreferencesStorage(std::optional<NSURL> url);

 private:
  // Where a value is kept until it is asked for again.
  template <typename T>
  using Field = std::optional<T>;
  struct Fields {
    Field<NSURL> userHome;
    Field<NSURL> downloadsURL;
    Field<std::vector<std::string>> libraryPaths;
    Field<NSURL> userLibraryURL;
    Field<std::vector<std::string>> applicationSupportPaths;
    Field<NSURL> userCaches;
    Field<NSURL> allUsersCaches;
    Field<std::string> userTempPath;
    Field<NSURL> darwinUserCaches;
    Field<std::string> applicationSupport;
    Field<NSURL> appPreferences;
  };

  // What the field holds, computed under the lock where that is nothing. The first computes an
  // optional value.
  template <typename T, typename Compute>
  Field<T> cached(Field<T> Fields::*field, const Compute& compute) const;
  template <typename T, typename Compute>
  T cachedValue(Field<T> Fields::*field, const Compute& compute) const;
  // The same without the lock meanwhile, so that two threads may compute it.
  template <typename T, typename Compute>
  Field<T> cachedUnlocked(Field<T> Fields::*field, const Compute& compute) const;
  template <typename T>
  void store(Field<T> Fields::*field, Field<T> value);
  template <typename T>
  [[nodiscard]] Field<T>& kept(Field<T> Fields::*field) const VORNIX_REQUIRES(mutex_) {
    return fields_.*field;
  }

  [[nodiscard]] NSURL inHome(std::string_view relativePath) const;
  [[nodiscard]] NSURL computedAppPreferences() const;
  [[nodiscard]] std::optional<NSURL> computedDarwinUserCaches() const;

  NSFileManager& files_;
  const StandardDirectories& directories_;
  const NSBundle& mainBundle_;
  const ResourceFiles& resources_;

  mutable Mutex mutex_;
  mutable Fields fields_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
