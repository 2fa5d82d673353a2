#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "locations/VXPaths.h"
#include "platform/files/NSFileManager.h"
#include "platform/linux/files/LinuxStandardDirectories.h"
#include "platform/system/NSBundle.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

using Variables = std::map<std::string, std::string, std::less<>>;

// The catalogue of a process with this home and environment, on the machine's file system.
class Catalogue {
 public:
  Catalogue(const std::string& home, const Variables& variables)
      : process_(processWith(home, variables)) {}

  [[nodiscard]] VXPaths& paths() { return paths_; }

 private:
  static fakes::FakeProcessInfo processWith(const std::string& home, const Variables& variables) {
    fakes::FakeProcessInfo process;
    process.home = home;
    process.variables = variables;
    return process;
  }

  fakes::FakeProcessInfo process_;
  LinuxStandardDirectories directories_{process_};
  NSFileManager files_{sharedFileSystem(), directories_, sharedTrash()};
  NSBundle bundle_{"/nowhere", {"en"}, Dictionary{{"CFBundleIdentifier", "com.example.program"}}};
  VXPaths paths_{files_, bundle_, sharedResourceFiles()};
};

using Accessor = std::optional<std::string> (*)(const VXPaths&);

std::optional<std::string> pathOf(const std::optional<NSURL>& url) {
  return url ? std::optional(url->path()) : std::nullopt;
}

std::string listOf(const std::vector<std::string>& paths) {
  std::string list;
  for (const std::string& path : paths) list += path + "|";
  return list;
}

struct Row {
  const char* name;
  Accessor accessor;
  // "~" stands for the home. None is nil.
  std::optional<std::string> path;
};

#define URL_ROW(name, path)                                                \
  Row {                                                                    \
#name, [](const VXPaths& paths) { return pathOf(paths.name()); }, path \
  }
#define PATH_ROW(name, path)                                                                   \
  Row {                                                                                        \
#name, [](const VXPaths& paths) { return std::optional<std::string>(paths.name()); }, path \
  }
#define LIST_ROW(name, path)                                                              \
  Row {                                                                                   \
#name, [](const VXPaths& paths) { return std::optional(listOf(paths.name())); }, path \
  }

// What no environment changes.
std::vector<Row> literalRows() {
  return {URL_ROW(userHome, "~"),
          URL_ROW(userLibraryURL, "~/Library"),
          LIST_ROW(libraryPaths, "~/Library|/Library|"),
          URL_ROW(userPreferences, "~/Library/Preferences"),
          URL_ROW(localPreferences, "/Library/Preferences"),
          URL_ROW(appPreferences, "~/Library/Preferences/com.example.program.plist"),
          URL_ROW(userLogs, "~/Library/Logs"),
          URL_ROW(allUsersLogs, "/Library/Logs"),
          URL_ROW(aslLogs, "/var/log/asl"),
          URL_ROW(allUsersCaches, "/var/cache"),
          URL_ROW(darwinUserCaches, std::nullopt),
          URL_ROW(userPrefPanesURL, "~/Library/PreferencePanes"),
          URL_ROW(allUsersPrefPanesURL, "/Library/PreferencePanes"),
          URL_ROW(userScriptingAdditionsURL, "~/Library/ScriptingAdditions"),
          URL_ROW(allUsersScriptingAdditionsURL, "/Library/ScriptingAdditions"),
          URL_ROW(launchAgentsPath, "~/Library/LaunchAgents"),
          URL_ROW(systemLaunchAgentsPath, "/Library/LaunchAgents"),
          URL_ROW(systemCoreLaunchAgentsPath, "/System/Library/LaunchAgents"),
          URL_ROW(launchDaemonsPath, "/Library/LaunchDaemons"),
          URL_ROW(sandboxContainer, "~/Library/Containers"),
          URL_ROW(sandboxGroupContainer, "~/Library/Group Containers"),
          URL_ROW(systemTrash, "~/.Trash"),
          URL_ROW(mailPluginsURL, "~/Library/Mail/Bundles"),
          URL_ROW(localKextURL, "/Library/Extensions"),
          URL_ROW(systemKextURL, "/System/Library/Extensions"),
          PATH_ROW(apertureRecentLibraryPath, std::nullopt),
          PATH_ROW(iPhotoRecentLibraryPath, std::nullopt),
          PATH_ROW(recentPhotosLibraryPath, std::nullopt)};
}

std::vector<Row> withLiteralRows(std::vector<Row> rows) {
  const std::vector<Row> others = literalRows();
  rows.insert(rows.end(), others.begin(), others.end());
  return rows;
}

std::string inHome(std::string path, const std::string& home) {
  for (std::size_t at = path.find('~'); at != std::string::npos; at = path.find('~', at)) {
    path.replace(at, 1, home);
    at += home.size();
  }
  return path;
}

void expectCatalogue(const std::string& home, const Variables& variables,
                     const std::vector<Row>& rows) {
  Catalogue catalogue(home, variables);
  for (int call = 0; call < 2; ++call) {
    for (const Row& row : rows) {
      const auto expected = row.path ? std::optional(inHome(*row.path, home)) : std::nullopt;
      EXPECT_EQ(row.accessor(catalogue.paths()), expected) << row.name;
    }
  }
}

std::vector<Row> plainRows(const char* downloads) {
  return withLiteralRows({URL_ROW(downloadsURL, downloads), URL_ROW(userCaches, "~/.cache"),
                          PATH_ROW(userTempPath, "/tmp"),
                          LIST_ROW(applicationSupportPaths, "~/.local/share|/usr/local/share|")});
}

TEST(VXPathsOnLinux, FollowTheHomeInAnEmptyEnvironment) {
  const tests::ScratchFolder home;
  expectCatalogue(home.path(), {}, plainRows("~/Downloads"));
}

TEST(VXPathsOnLinux, FollowTheEnvironmentsBaseDirectories) {
  const tests::ScratchFolder home;
  expectCatalogue(
      home.path(),
      {{"XDG_CACHE_HOME", "/srv/cache/"},
       {"XDG_DATA_HOME", "/srv/data"},
       {"TMPDIR", "/var//tmp/./x/"}},
      withLiteralRows({URL_ROW(downloadsURL, "~/Downloads"), URL_ROW(userCaches, "/srv/cache"),
                       PATH_ROW(userTempPath, "/var/tmp/x"),
                       LIST_ROW(applicationSupportPaths, "/srv/data|/usr/local/share|")}));
}

TEST(VXPathsOnLinux, IgnoreBaseDirectoriesThatAreRelative) {
  const tests::ScratchFolder home;
  expectCatalogue(home.path(),
                  {{"XDG_CACHE_HOME", "cache"}, {"XDG_DATA_HOME", ""}, {"TMPDIR", "tmp"}},
                  plainRows("~/Downloads"));
}

TEST(VXPathsOnLinux, FollowTheUsersDirectoriesWherePresent) {
  const tests::ScratchFolder home;
  home.write(".config/user-dirs.dirs",
             "# comment\nXDG_DESKTOP_DIR=\"$HOME/Desk\"\nXDG_DOWNLOAD_DIR=\"$HOME/Ge laden\"\n");
  expectCatalogue(home.path(), {}, plainRows("~/Ge laden"));
}

TEST(VXPathsOnLinux, IgnoreUsersDirectoriesThatAreMalformed) {
  for (const char* contents : {"", "\n", "XDG_DOWNLOAD_DIR", "XDG_DOWNLOAD_DIR=\"$HOME/x",
                               "XDG_DOWNLOAD_DIR=\"x\"", "XDG_DOWNLOAD_DIR=$HOME/x", "\xFF\xFE"}) {
    const tests::ScratchFolder home;
    home.write(".config/user-dirs.dirs", contents);
    expectCatalogue(home.path(), {}, plainRows("~/Downloads"));
  }
}

TEST(VXPathsOnLinux, ServeHomesWithAnyBytesInTheirNames) {
  const tests::ScratchFolder scratch;
  for (const char* name : {"with space", "50%", "%41", "line\nbreak", "\xFF\xFE", "\xED\xA0\x80",
                           "\u05d0\u200b", "cafe\u0301", "\ud55c", "\ufeff", "\U0001F4BE"}) {
    const std::string home = scratch.path(name);
    std::filesystem::create_directory(home);
    expectCatalogue(home, {}, plainRows("~/Downloads"));
    Catalogue catalogue(home, {});
    EXPECT_EQ(catalogue.paths().vnxLogFolderPath(), std::nullopt);
    const std::string logs = home + "/Library/Logs/com.orvane.Vornix3";
    EXPECT_TRUE(std::filesystem::is_directory(logs));
    EXPECT_EQ(catalogue.paths().vnxLogFolderPath(), logs);
    EXPECT_EQ(NSURL::URLWithString(catalogue.paths().vnxLogFolderURL()->absoluteString())->path(),
              logs);
  }
}

TEST(VXPathsOnLinux, MakeTheLogFolderInAFreshHomeAtTheFirstCallAndAnswerItFromTheSecondOn) {
  const tests::ScratchFolder home;
  Catalogue catalogue(home.path(), {});
  EXPECT_EQ(catalogue.paths().vnxLogFolderURL(), std::nullopt);
  const auto url = catalogue.paths().vnxLogFolderURL();
  ASSERT_TRUE(url.has_value());
  EXPECT_EQ(url->path(), home.path("Library/Logs/com.orvane.Vornix3"));
  EXPECT_TRUE(url->hasDirectoryPath());
}

TEST(VXPathsOnLinux, MakeTheApplicationSupportFolder) {
  const tests::ScratchFolder home;
  Catalogue catalogue(home.path(), {});
  // This test's program is no bundle, so its folder has no name of its own.
  EXPECT_EQ(catalogue.paths().applicationSupport(), home.path(".local/share"));
  EXPECT_TRUE(std::filesystem::is_directory(home.path(".local/share")));
}

TEST(VXPathsOnLinux, ReadPropertyListsOfPhotoLibraries) {
  const tests::ScratchFolder home;
  home.write("Library/Preferences/com.apple.iApps.plist",
             "<plist><dict><key>ApertureLastOpenedDatabase</key>"
             "<string>file:///srv/My%20Photos/db</string><key>iPhotoRecentDatabases</key>"
             "<array><string>file://localhost/srv/i/AlbumData.xml</string></array></dict></plist>");
  Catalogue catalogue(home.path(), {});
  EXPECT_EQ(catalogue.paths().apertureRecentLibraryPath(), "/srv/My Photos");
  EXPECT_EQ(catalogue.paths().iPhotoRecentLibraryPath(), "/srv/i");
}

TEST(VXPathsOnLinux, TakeTheAccountsHomeWhereTheEnvironmentHasNone) {
  const passwd* account = getpwuid(getuid());
  if (account == nullptr) GTEST_SKIP() << "NOT TESTED: this account has no entry";
  const std::string home = account->pw_dir;
  for (const char* value : {"", "relative", "./x", "~"}) {
    setenv("HOME", value, 1);
    EXPECT_EQ(VXPaths::sharedInstance().userLogs().path(), home + "/Library/Logs") << value;
    VXPaths::sharedInstance().setUserHomeStorage(std::nullopt);
  }
  unsetenv("HOME");
  EXPECT_EQ(VXPaths::sharedInstance().userLogs().path(), home + "/Library/Logs");
}

TEST(VXPathsOnLinux, DropTheSlashAtTheEndOfTheHome) {
  setenv("HOME", "/srv/home//", 1);
  EXPECT_EQ(VXPaths::sharedInstance().userHome().path(), "/srv/home");
  EXPECT_EQ(VXPaths::sharedInstance().systemTrash().path(), "/srv/home/.Trash");
}

}  // namespace
}  // namespace vornix
