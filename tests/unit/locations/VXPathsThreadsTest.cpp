#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/unit/locations/VXPathsFixture.h"

namespace vornix {
namespace {

constexpr int kThreads = 200;

// Runs it in all threads, which start together.
void inAllThreads(const std::function<void()>& work) {
  std::latch start(kThreads);
  std::vector<std::jthread> threads;
  threads.reserve(kThreads);
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      work();
    });
  }
}

class VXPathsThreads : public testing::Test, protected VXPathsMachine {
 protected:
  VXPathsThreads() { machine.directories.configuration[65538] = "/var/folders/C/"; }

  // How many of the values that are computed under the lock are wrong.
  [[nodiscard]] int wrongLockedValues() const {
    const auto at = [](const std::optional<NSURL>& url, std::string_view path) {
      return url && url->path() == path ? 0 : 1;
    };
    return at(paths.userHome(), "/home/ada") + at(paths.downloadsURL(), "/home/ada/Downloads") +
           at(paths.userLibraryURL(), "/home/ada/Library") +
           at(paths.userCaches(), "/home/ada/.cache") + at(paths.allUsersCaches(), "/var/cache") +
           at(paths.darwinUserCaches(), "/var/folders/C") +
           (paths.libraryPaths().size() == 2 ? 0 : 1) +
           (paths.applicationSupportPaths().size() == 2 ? 0 : 1) +
           (paths.userTempPath() == "/tmp" ? 0 : 1);
  }

  [[nodiscard]] int wrongOtherValues() const {
    const std::vector<NSURL> places = {paths.userPreferences(),
                                       VXPaths::localPreferences(),
                                       paths.userLogs(),
                                       VXPaths::allUsersLogs(),
                                       VXPaths::aslLogs(),
                                       paths.userPrefPanesURL(),
                                       VXPaths::allUsersPrefPanesURL(),
                                       paths.userScriptingAdditionsURL(),
                                       VXPaths::allUsersScriptingAdditionsURL(),
                                       paths.launchAgentsPath(),
                                       VXPaths::systemLaunchAgentsPath(),
                                       VXPaths::systemCoreLaunchAgentsPath(),
                                       VXPaths::launchDaemonsPath(),
                                       paths.sandboxContainer(),
                                       paths.sandboxGroupContainer(),
                                       paths.systemTrash(),
                                       paths.mailPluginsURL(),
                                       VXPaths::localKextURL(),
                                       VXPaths::systemKextURL()};
    int wrong = 0;
    for (const NSURL& url : places) wrong += url.hasDirectoryPath() ? 0 : 1;
    const auto preferences = paths.appPreferences();
    const auto logs = paths.vnxLogFolderPath();
    const bool areRight =
        preferences.path().ends_with("/com.example.program.plist") &&
        paths.preferences().size() == 2 && VXPaths::systemPlugInFolders().size() == 15 &&
        paths.applicationSupport() == "/home/ada/.local/share/the-program" &&
        (!logs || logs->ends_with("/com.orvane.Vornix3")) && !paths.apertureRecentLibraryPath() &&
        !paths.iPhotoRecentLibraryPath() && !paths.recentPhotosLibraryPath();
    return wrong + (areRight ? 0 : 1);
  }

  fakes::ScopedSharedLogger logger_;
};

TEST_F(VXPathsThreads, ComputeEachValueUnderTheLockOnce) {
  std::atomic<int> wrong = 0;
  inAllThreads([&] { wrong += wrongLockedValues(); });
  EXPECT_EQ(wrong, 0);
  const auto& asked = machine.directories;
  EXPECT_EQ(asked.homeRequests(), 1);
  EXPECT_EQ(asked.temporaryRequests(), 1);
  EXPECT_EQ(asked.configurationRequests(), 1);
  EXPECT_EQ(asked.searches(NSDownloadsDirectory, NSUserDomainMask), 1);
  EXPECT_EQ(asked.searches(NSLibraryDirectory, NSUserDomainMask), 1);
  EXPECT_EQ(asked.searches(NSCachesDirectory, NSUserDomainMask), 1);
  EXPECT_EQ(asked.searches(NSCachesDirectory, NSLocalDomainMask), 1);
  EXPECT_EQ(asked.searches(NSLibraryDirectory, 3), 1);
  EXPECT_EQ(asked.searches(NSApplicationSupportDirectory, 3), 1);
}

TEST_F(VXPathsThreads, AskAllAccessorsAtOnce) {
  fakes::resourceFiles().setPropertyList("/opt/vornix/share/program/Info.plist",
                                         Dictionary{{"CFBundleExecutable", "the-program"}});
  machine.tree.addFolder("/home/ada/Library/Logs");
  std::atomic<int> wrong = 0;
  inAllThreads([&] { wrong += wrongLockedValues() + wrongOtherValues(); });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(logger_.messages(),
            std::vector<std::string>{"Failed to create directory "
                                     "file:///home/ada/Library/Logs/com.orvane.Vornix3"});
}

TEST_F(VXPathsThreads, AskWhileValuesAreInjected) {
  std::atomic<int> turn = 0;
  std::atomic<int> wrong = 0;
  inAllThreads([&] {
    const int number = turn++;
    if (number % 4 == 0) paths.setUserTempPath("/injected");
    if (number % 4 == 1) paths.setUserTempPath(std::nullopt);
    if (number % 4 == 2) paths.setAppPreferencesStorage(std::nullopt);
    const std::string path = paths.userTempPath();
    const bool hasPreferences = paths.appPreferences().path().ends_with(".plist");
    wrong += (path == "/tmp" || path == "/injected") && hasPreferences ? 0 : 1;
  });
  EXPECT_EQ(wrong, 0);
}

TEST_F(VXPathsThreads, MakeOneSharedInstance) {
  std::atomic<VXPaths*> first = nullptr;
  std::atomic<int> others = 0;
  inAllThreads([&] {
    VXPaths* expected = nullptr;
    VXPaths* const mine = &VXPaths::sharedInstance();
    if (!first.compare_exchange_strong(expected, mine) && expected != mine) ++others;
  });
  EXPECT_EQ(others, 0);
}

}  // namespace
}  // namespace vornix
