#include "locations/VXPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/unit/locations/VXPathsFixture.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Key = std::pair<NSSearchPathDirectory, NSSearchPathDomainMask>;
constexpr int kUserCacheDirectory = 65538;

class VXPathsTest : public testing::Test, protected VXPathsMachine {
 protected:
  std::vector<std::string>& found(NSSearchPathDirectory kind, NSSearchPathDomainMask domain) {
    return machine.directories.folders[Key(kind, domain)];
  }

  fakes::ScopedSharedLogger logger_;
};

std::vector<std::string> pathsOf(const std::vector<NSURL>& urls) {
  std::vector<std::string> paths;
  for (const NSURL& url : urls) paths.push_back(url.path());
  return paths;
}

TEST_F(VXPathsTest, KnowsThePlacesInTheHome) {
  struct Row {
    NSURL (VXPaths::*place)() const;
    std::string path;
  };
  const Row rows[] = {{&VXPaths::userHome, ""},
                      {&VXPaths::userPreferences, "/Library/Preferences"},
                      {&VXPaths::userLogs, "/Library/Logs"},
                      {&VXPaths::userPrefPanesURL, "/Library/PreferencePanes"},
                      {&VXPaths::userScriptingAdditionsURL, "/Library/ScriptingAdditions"},
                      {&VXPaths::launchAgentsPath, "/Library/LaunchAgents"},
                      {&VXPaths::sandboxContainer, "/Library/Containers"},
                      {&VXPaths::sandboxGroupContainer, "/Library/Group Containers"},
                      {&VXPaths::systemTrash, "/.Trash"},
                      {&VXPaths::mailPluginsURL, "/Library/Mail/Bundles"}};
  for (const std::string home :
       {"/home/ada", "/", "/home/with space", "/home/50%", "/home/%41", "/home/line\nbreak",
        "/home/\xFF\xFE", "/home/\xED\xA0\x80", "/home/cafe\u0301", "/home/\u05d0\u200b",
        "/home/\ud55c", "/home/\u0130\u00df\u03c2", "/home/\U0001F4BE", "/home/\ufeff", "/~"}) {
    machine.directories.home = home;
    paths.setUserHomeStorage(std::nullopt);
    for (const Row& row : rows) {
      const NSURL url = (paths.*row.place)();
      EXPECT_EQ(url.path(), row.path.empty() ? home : (home == "/" ? "" : home) + row.path);
      EXPECT_TRUE(url.hasDirectoryPath()) << url.description();
      EXPECT_EQ(NSURL::URLWithString(url.absoluteString())->path(), url.path());
    }
  }
}

TEST_F(VXPathsTest, GivesPlacesInTheHomeTheFormOfTheHome) {
  paths.setUserHomeStorage(NSURL::fileURLWithPath("/srv/home", false));
  EXPECT_EQ(paths.userHome().absoluteString(), "file:///srv/home");
  EXPECT_EQ(paths.userLogs().absoluteString(), "file:///srv/home/Library/Logs");
  paths.setUserHomeStorage(NSURL::fileURLWithPath("/srv/home", true));
  EXPECT_EQ(paths.userLogs().absoluteString(), "file:///srv/home/Library/Logs/");
}

TEST_F(VXPathsTest, KnowsTheFixedPlaces) {
  EXPECT_THAT(
      pathsOf({VXPaths::localPreferences(), VXPaths::allUsersLogs(), VXPaths::aslLogs(),
               VXPaths::allUsersPrefPanesURL(), VXPaths::allUsersScriptingAdditionsURL(),
               VXPaths::systemLaunchAgentsPath(), VXPaths::systemCoreLaunchAgentsPath(),
               VXPaths::launchDaemonsPath(), VXPaths::localKextURL(), VXPaths::systemKextURL()}),
      ElementsAre("/Library/Preferences", "/Library/Logs", "/var/log/asl",
                  "/Library/PreferencePanes", "/Library/ScriptingAdditions",
                  "/Library/LaunchAgents", "/System/Library/LaunchAgents", "/Library/LaunchDaemons",
                  "/Library/Extensions", "/System/Library/Extensions"));
  EXPECT_EQ(VXPaths::aslLogs().absoluteString(), "file:///var/log/asl/");
  EXPECT_TRUE(VXPaths::systemKextURL().hasDirectoryPath());
}

TEST_F(VXPathsTest, ListsTheMachinesPreferencesBeforeThePersons) {
  EXPECT_THAT(pathsOf(paths.preferences()),
              ElementsAre("/Library/Preferences", "/home/ada/Library/Preferences"));
}

TEST_F(VXPathsTest, ListsTheFoldersForPlugIns) {
  EXPECT_THAT(
      VXPaths::systemPlugInFolders(),
      ElementsAre("/Library/QuickTime", "/Library/Internet Plug-ins", "/Library/Safari/Extensions",
                  "/Library/QuickLook", "/Library/Contextual Menu Items", "/Library/Spotlight",
                  "/Library/InputManagers", "/Library/iTunes/iTunes Plug-ins",
                  "/Library/iTunes/Scripts", "/Library/Address Book Plug-Ins",
                  "/Library/Screen Savers", "/Library/Dictionaries", "/Library/Mail/Bundles",
                  "/Library/Services", "/Library/Application Support/Growl/Tickets"));
}

struct SearchRow {
  std::optional<NSURL> (VXPaths::*accessor)() const;
  NSSearchPathDirectory kind;
  NSSearchPathDomainMask domain;
  std::string path;
};

const SearchRow kSearches[] = {
    {&VXPaths::downloadsURL, NSDownloadsDirectory, NSUserDomainMask, "/home/ada/Downloads"},
    {&VXPaths::userLibraryURL, NSLibraryDirectory, NSUserDomainMask, "/home/ada/Library"},
    {&VXPaths::userCaches, NSCachesDirectory, NSUserDomainMask, "/home/ada/.cache"},
    {&VXPaths::allUsersCaches, NSCachesDirectory, NSLocalDomainMask, "/var/cache"}};

TEST_F(VXPathsTest, SearchesOnceForWhatTheSearchFindsOnce) {
  for (const SearchRow& row : kSearches) {
    for (int call = 0; call < 3; ++call) {
      const auto url = (paths.*row.accessor)();
      ASSERT_TRUE(url.has_value());
      EXPECT_EQ(url->path(), row.path);
    }
    EXPECT_EQ(machine.directories.searches(row.kind, row.domain), 1);
    found(row.kind, row.domain) = {"/elsewhere"};
    EXPECT_EQ((paths.*row.accessor)()->path(), row.path) << "what is cached stays";
  }
}

TEST_F(VXPathsTest, LeavesUserCachesNilWhenTheSearchFindsTwo) {
  found(NSCachesDirectory, NSUserDomainMask) = {"/a", "/b"};
  EXPECT_EQ(paths.userCaches(), std::nullopt);
}

TEST_F(VXPathsTest, SearchesAgainUntilThereIsExactlyOneResult) {
  for (const SearchRow& row : kSearches) {
    for (const std::vector<std::string>& results :
         {std::vector<std::string>{}, {"/a", "/b"}, {"/a", "/a"}, {"/a", "/b", "/c"}}) {
      found(row.kind, row.domain) = results;
      EXPECT_EQ((paths.*row.accessor)(), std::nullopt);
    }
    found(row.kind, row.domain) = {"/one"};
    EXPECT_EQ((paths.*row.accessor)()->path(), "/one");
  }
}

TEST_F(VXPathsTest, ListsLibrariesAndApplicationSupportOfBothDomainsOnce) {
  for (int call = 0; call < 3; ++call) {
    EXPECT_THAT(paths.libraryPaths(), ElementsAre("/home/ada/Library", "/Library"));
    EXPECT_THAT(paths.applicationSupportPaths(),
                ElementsAre("/home/ada/.local/share", "/usr/local/share"));
  }
  EXPECT_EQ(machine.directories.searches(NSLibraryDirectory, 3), 1);
  EXPECT_EQ(machine.directories.searches(NSApplicationSupportDirectory, 3), 1);
}

TEST_F(VXPathsTest, CachesEmptyListsToo) {
  machine.directories.folders.clear();
  EXPECT_THAT(paths.libraryPaths(), IsEmpty());
  found(NSLibraryDirectory, NSUserDomainMask) = {"/late"};
  EXPECT_THAT(paths.libraryPaths(), IsEmpty());
}

TEST_F(VXPathsTest, StandardizesTheTemporaryFolderOnce) {
  for (const auto& [folder, expected] : {std::pair("/tmp/", "/tmp"),
                                         {"/var//tmp/./x/", "/var/tmp/x"},
                                         {"/a/../b/", "/b"},
                                         {"/", "/"},
                                         {"/\xFF %\n/", "/\xFF %\n"}}) {
    machine.directories.temporary = folder;
    paths.setUserTempPath(std::nullopt);
    const int before = machine.directories.temporaryRequests();
    EXPECT_EQ(paths.userTempPath(), expected);
    EXPECT_EQ(paths.userTempPath(), expected);
    EXPECT_EQ(machine.directories.temporaryRequests(), before + 1);
  }
}

TEST_F(VXPathsTest, ReturnsInjectedValuesUnchangedAndComputesNothing) {
  const auto injected = [](const char* name) {
    return NSURL::fileURLWithPath("/injected/" + std::string(name), false);
  };
  paths.setUserHomeStorage(injected("home"));
  paths.setDownloadsURL(injected("downloads"));
  paths.setUserLibraryURL(injected("library"));
  paths.setUserCaches(injected("caches"));
  paths.setAllUsersCaches(injected("all-caches"));
  paths.setDarwinUserCachesStorage(injected("darwin"));
  paths.setAppPreferencesStorage(NSURL::URLWithString("http://not/a/file"));
  paths.setLibraryPaths(std::vector<std::string>{"relative", "", "//x/"});
  paths.setApplicationSupportPaths(std::vector<std::string>{});
  paths.setUserTempPath("not//standardized/./");
  paths.setApplicationSupportStorage("");
  for (int call = 0; call < 2; ++call) {
    EXPECT_EQ(paths.userHome(), injected("home"));
    EXPECT_EQ(paths.downloadsURL(), injected("downloads"));
    EXPECT_EQ(paths.userLibraryURL(), injected("library"));
    EXPECT_EQ(paths.userCaches(), injected("caches"));
    EXPECT_EQ(paths.allUsersCaches(), injected("all-caches"));
    EXPECT_EQ(paths.darwinUserCaches(), injected("darwin"));
    EXPECT_EQ(paths.appPreferences(), NSURL::URLWithString("http://not/a/file"));
    EXPECT_THAT(paths.libraryPaths(), ElementsAre("relative", "", "//x/"));
    EXPECT_THAT(paths.applicationSupportPaths(), IsEmpty());
    EXPECT_EQ(paths.userTempPath(), "not//standardized/./");
    EXPECT_EQ(paths.applicationSupport(), "");
  }
  for (const NSSearchPathDomainMask domains : {1U, 2U, 3U}) {
    for (const NSSearchPathDirectory kind : {5U, 13U, 14U, 15U})
      EXPECT_EQ(machine.directories.searches(kind, domains), 0) << kind;
  }
  EXPECT_EQ(machine.directories.homeRequests(), 0);
  EXPECT_EQ(machine.directories.temporaryRequests(), 0);
  EXPECT_EQ(machine.directories.configurationRequests(), 0);
}

TEST_F(VXPathsTest, NamesThePreferencesFileAfterTheMainBundle) {
  for (int call = 0; call < 3; ++call) {
    EXPECT_EQ(paths.appPreferences().absoluteString(),
              "file:///home/ada/Library/Preferences/com.example.program.plist");
  }
  EXPECT_EQ(machine.directories.searches(NSLibraryDirectory, NSUserDomainMask), 1);
}

TEST_F(VXPathsTest, TakesTheFirstLibraryForThePreferencesFile) {
  found(NSLibraryDirectory, NSUserDomainMask) = {"/first", "/second"};
  EXPECT_EQ(paths.appPreferences().path(), "/first/Preferences/com.example.program.plist");
}

TEST_F(VXPathsTest, LogsThatThereIsNoLibraryForThePreferencesFileAndLooksAgain) {
  found(NSLibraryDirectory, NSUserDomainMask).clear();
  EXPECT_THROW((void)paths.appPreferences(), std::out_of_range);
  EXPECT_THROW((void)paths.appPreferences(), std::out_of_range);
  EXPECT_THAT(logger_.messages(LogLevelDebug),
              ElementsAre("Failed to get app preferences", "Failed to get app preferences"));
  found(NSLibraryDirectory, NSUserDomainMask) = {"/late"};
  EXPECT_EQ(paths.appPreferences().path(), "/late/Preferences/com.example.program.plist");
}

TEST_F(VXPathsTest, KnowsNoPerUserCachesWhereTheSystemHasNone) {
  EXPECT_EQ(paths.darwinUserCaches(), std::nullopt);
  EXPECT_EQ(paths.darwinUserCaches(), std::nullopt);
  EXPECT_EQ(machine.directories.configurationRequests(), 2);
}

TEST_F(VXPathsTest, AsksTheSystemOnceForThePerUserCaches) {
  struct Row {
    std::string text;
    std::optional<std::string> path;
  };
  const std::string longest = "/" + std::string(1022, 'x');
  const Row rows[] = {{"/var/folders/xx/C/", "/var/folders/xx/C"},
                      {"/var/with space %\n", "/var/with space %\n"},
                      {"/\xFF\xED\xA0\x80", "/\xFF\xED\xA0\x80"},
                      {longest, longest},
                      {longest + "y", std::nullopt},
                      {std::string(100'000, '/'), std::nullopt},
                      {"", std::nullopt}};
  for (const Row& row : rows) {
    machine.directories.configuration[kUserCacheDirectory] = row.text;
    paths.setDarwinUserCachesStorage(std::nullopt);
    const int before = machine.directories.configurationRequests();
    for (int call = 0; call < 2; ++call) {
      const auto url = paths.darwinUserCaches();
      EXPECT_EQ(url ? std::optional(url->path()) : std::nullopt, row.path);
      EXPECT_TRUE(!url || url->hasDirectoryPath());
    }
    EXPECT_EQ(machine.directories.configurationRequests(), before + (row.path ? 1 : 2));
  }
}

TEST_F(VXPathsTest, MakesTheProgramsApplicationSupportFolderOnce) {
  fakes::resourceFiles().setPropertyList("/opt/vornix/share/program/Info.plist",
                                         Dictionary{{"CFBundleExecutable", "the-program"}});
  EXPECT_EQ(paths.applicationSupport(), "/home/ada/.local/share/the-program");
  EXPECT_TRUE(machine.files.fileExistsAtPath("/home/ada/.local/share/the-program"));
  EXPECT_TRUE(machine.files.removeItemAtPath("/home/ada/.local/share/the-program"));
  EXPECT_EQ(paths.applicationSupport(), "/home/ada/.local/share/the-program");
  EXPECT_FALSE(machine.files.fileExistsAtPath("/home/ada/.local/share/the-program"));
}

TEST_F(VXPathsTest, TriesAgainToMakeTheApplicationSupportFolder) {
  fakes::resourceFiles().setPropertyList("/opt/vornix/share/program/Info.plist",
                                         Dictionary{{"CFBundleExecutable", "the-program"}});
  machine.tree.addFile("/home/ada/.local/share/the-program");
  EXPECT_EQ(paths.applicationSupport(), std::nullopt);
  EXPECT_TRUE(machine.files.removeItemAtPath("/home/ada/.local/share/the-program"));
  EXPECT_EQ(paths.applicationSupport(), "/home/ada/.local/share/the-program");
}

constexpr const char* kLogFolder = "/home/ada/Library/Logs/com.orvane.Vornix3";

TEST_F(VXPathsTest, AnswersNilWhenItMadeTheLogFolderAndTheFolderFromTheSecondCallOn) {
  machine.tree.addFolder("/home/ada/Library/Logs");
  EXPECT_EQ(paths.vnxLogFolderURL(), std::nullopt);
  EXPECT_TRUE(machine.files.fileExistsAtPath(kLogFolder));
  EXPECT_THAT(logger_.messages(LogLevelDebug),
              ElementsAre("Failed to create directory file://" + std::string(kLogFolder)));
  for (int call = 0; call < 2; ++call) {
    const auto url = paths.vnxLogFolderURL();
    ASSERT_TRUE(url.has_value());
    EXPECT_EQ(url->path(), kLogFolder);
    EXPECT_EQ(paths.vnxLogFolderPath(), kLogFolder);
  }
  EXPECT_EQ(logger_.messages().size(), 1U);
}

TEST_F(VXPathsTest, AnswersALogFolderThatCannotBeMade) {
  EXPECT_EQ(paths.vnxLogFolderPath(), kLogFolder) << "nothing above it exists";
  EXPECT_FALSE(machine.files.fileExistsAtPath("/home/ada/Library"));
  machine.tree.addFolder("/home/ada/Library/Logs");
  machine.tree.refuseChangesIn("/home/ada/Library/Logs", EACCES);
  EXPECT_EQ(paths.vnxLogFolderPath(), kLogFolder);
  EXPECT_FALSE(machine.files.fileExistsAtPath(kLogFolder));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(VXPathsTest, AnswersTheLogFolderWhateverStandsThere) {
  machine.tree.addFile(kLogFolder);
  EXPECT_EQ(paths.vnxLogFolderPath(), kLogFolder);
  machine.tree.addLink(kLogFolder, "missing");
  EXPECT_EQ(paths.vnxLogFolderPath(), kLogFolder);
}

TEST_F(VXPathsTest, AnswersNoLogFolderWithoutALibrary) {
  found(NSLibraryDirectory, NSUserDomainMask).clear();
  EXPECT_EQ(paths.vnxLogFolderURL(), std::nullopt);
  EXPECT_EQ(paths.vnxLogFolderPath(), std::nullopt);
}

TEST_F(VXPathsTest, TakesTheFirstLibraryForTheLogFolder) {
  found(NSLibraryDirectory, NSUserDomainMask) = {"/first %", "/second"};
  EXPECT_EQ(paths.vnxLogFolderPath(), "/first %/Logs/com.orvane.Vornix3");
}

TEST(VXPathsSharedInstanceTest, IsOneForTheProcessAndStandsOnItsServices) {
  VXPaths& paths = VXPaths::sharedInstance();
  EXPECT_EQ(&paths, &VXPaths::sharedInstance());
  EXPECT_EQ(paths.userHome().path(), "/home/ada");
  EXPECT_EQ(paths.appPreferences().path(),
            "/home/ada/Library/Preferences/com.example.program.plist");
}

}  // namespace
}  // namespace vornix
