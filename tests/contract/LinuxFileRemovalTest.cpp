#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/ForkedProcess.h"
#include "tests/contract/support/DeepTree.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/PeakMemory.h"
#include "tests/contract/support/TreeText.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

constexpr long kMostKilobytes = 64L << 10;

std::int64_t removalCode(const std::string& path) {
  std::optional<NSError> error;
  const bool isRemoved = NSFileManager::defaultManager().removeItemAtPath(path, &error);
  EXPECT_EQ(isRemoved, !error.has_value());
  EXPECT_EQ(isRemoved, !fs::exists(fs::symlink_status(path)));
  return error ? error->code : 0;
}

class FileRemovalOn : public testing::TestWithParam<const char*> {
 protected:
  [[nodiscard]] static bool isMemory() { return GetParam() == std::string("memory"); }
};

INSTANTIATE_TEST_SUITE_P(, FileRemovalOn, testing::Values("disk", "memory"),
                         [](const auto& each) { return std::string(each.param); });

// The story's items are in its folder "here", on the kind of volume that is asked for.
FakeFileWorld::Outcome playOn(const std::string& volume,
                              const std::function<void(LinuxFileWorld&)>& story) {
  return LinuxFileWorld::play([&](LinuxFileWorld& world) {
    world.folder("here");
    if (volume == "memory") world.mount("here");
    story(world);
  });
}

TEST_P(FileRemovalOn, NeedsNoMoreDescriptorsAndMemoryForDeepFolders) {
  // Disks are slow to make many items.
  const int depth = isMemory() ? 10'000 : 3'000;
  const auto outcome = playOn(GetParam(), [&](LinuxFileWorld& world) {
    makeDeepTree(world.path("here/deep"), depth);
    const rlimit few{.rlim_cur = 64, .rlim_max = 64};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    const PeakMemory memory;
    EXPECT_EQ(removalCode(world.path("here/deep")), 0);
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(FileRemovalOn, NeedsLittleMemoryForManyItemsInOneFolder) {
  const int items = isMemory() ? 100'000 : 20'000;
  const auto outcome = playOn(GetParam(), [&](LinuxFileWorld& world) {
    world.folder("here/many");
    const FileDescriptor folder(open(world.path("here/many").c_str(), O_RDONLY | O_CLOEXEC));
    for (int number = 0; number < items; ++number) {
      const std::string name = "a name that is as long as many are " + std::to_string(number);
      // Folders too, more than names are kept for.
      const int made = number % 8 == 0 ? mkdirat(folder.get(), name.c_str(), 0700)
                                       : mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0);
      ASSERT_EQ(made, 0);
    }
    const PeakMemory memory;
    EXPECT_EQ(removalCode(world.path("here/many")), 0);
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes / 8);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(FileRemovalOn, TakesWhatAnotherProcessRemovesMeanwhileForRemoved) {
  const auto outcome = playOn(GetParam(), [&](LinuxFileWorld& world) {
    for (int round = 0; round < 20; ++round) {
      for (int number = 0; number < 100; ++number)
        world.file("here/both/" + std::to_string(number % 10) + "/" + std::to_string(number));
      const ForkedProcess other([&world] {
        (void)NSFileManager::defaultManager().removeItemAtPath(world.path("here/both"));
        _exit(0);
      });
      std::optional<NSError> error;
      const bool isRemoved =
          NSFileManager::defaultManager().removeItemAtPath(world.path("here/both"), &error);
      EXPECT_TRUE(isRemoved || error->code == NSFileNoSuchFileError) << error->description();
      EXPECT_EQ(other.awaitEnd(), 0);
      EXPECT_FALSE(fs::exists(world.path("here/both")));
    }
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

// Another process exchanges folders and links to what must stay, while they are removed.
TEST_P(FileRemovalOn, NeverTouchesWhatFoldersAreSwappedFor) {
  const int allSwaps = isMemory() ? 100'000 : 10'000;
  const auto outcome = playOn(GetParam(), [&](LinuxFileWorld& world) {
    world.file("here/canary/file");
    world.file("here/canary/sub/file");
    for (int number = 0; number < 4; ++number)
      world.link("here/links/" + std::to_string(number), world.path("here/canary"));
    const std::string canary = textOfTree(world.path("here/canary"));
    const std::string doomed = world.path("here/doomed/");
    const std::string links = world.path("here/links/");
    const std::string apart = world.path("here/apart/");
    const ForkedProcess swapper([&] {
      int swaps = 0;
      while (swaps < allSwaps) {
        const std::string name = std::to_string(swaps % 4);
        swaps += renameat2(AT_FDCWD, (doomed + name).c_str(), AT_FDCWD, (links + name).c_str(),
                           RENAME_EXCHANGE) == 0;
      }
      _exit(0);
    });
    int status = 0;
    while (waitpid(-1, &status, WNOHANG) == 0) {
      // Made apart, where this process follows no link.
      for (int number = 0; number < 4; ++number)
        fs::create_directories(apart + std::to_string(number) + "/sub/deeper");
      (void)!rename(apart.c_str(), doomed.c_str());
      (void)NSFileManager::defaultManager().removeItemAtPath(doomed);
      ASSERT_EQ(textOfTree(world.path("here/canary")), canary);
    }
    EXPECT_EQ(status, 0);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(LinuxFileRemoval, LeavesAloneWhatIsMountedBelowAFolder) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("folder/volume");
    world.folder("folder/bound");
    world.file("kept/file");
    world.file("file");
    world.file("folder2/bound-file");
    world.mount("folder/volume");
    world.file("folder/volume/file");
    world.bind("kept", "folder/bound");
    world.bind("file", "folder2/bound-file");
    EXPECT_EQ(removalCode(world.path("folder")), 512);
    EXPECT_EQ(removalCode(world.path("folder/volume")), 512);
    EXPECT_EQ(removalCode(world.path("folder2")), 512);
    for (const char* kept : {"folder/volume/file", "folder/bound/file", "kept/file", "file"})
      EXPECT_TRUE(fs::exists(world.path(kept))) << kept;
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(LinuxFileRemoval, SaysThatAVolumeIsReadOnly) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("volume");
    world.mount("volume");
    world.file("volume/folder/file");
    world.makeReadOnly("volume");
    EXPECT_EQ(removalCode(world.path("volume/folder/file")), 642);
    EXPECT_EQ(removalCode(world.path("volume/folder")), 642);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(FileRemovalOn, RemovesAnUnreadableFolderOnlyWhenItIsEmpty) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  playOn(GetParam(), [&](LinuxFileWorld& world) {
    world.file("here/full/unreadable/file");
    world.folder("here/empty/unreadable");
    world.folder("here/top");
    world.forbidChangesIn("here/full/unreadable");
    for (const char* name : {"here/full/unreadable", "here/empty/unreadable", "here/top"})
      EXPECT_EQ(chmod(world.path(name).c_str(), 0), 0);
    EXPECT_EQ(removalCode(world.path("here/full")), 513);
    EXPECT_EQ(removalCode(world.path("here/empty")), 0);
    EXPECT_EQ(removalCode(world.path("here/top")), 0);
    EXPECT_EQ(chmod(world.path("here/full/unreadable").c_str(), 0700), 0);
    EXPECT_TRUE(fs::exists(world.path("here/full/unreadable/file")));
  });
}

TEST_P(FileRemovalOn, LeavesOtherPeoplesItemsInAStickyFolder) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  playOn(GetParam(), [&](LinuxFileWorld& world) {
    world.file("here/sticky/foreign");
    world.folder("here/others");
    world.forbidChangesIn("here/others");
    EXPECT_EQ(seteuid(0), 0);
    world.file("here/sticky/own");
    EXPECT_EQ(chown(world.path("here/sticky").c_str(), 0, 0), 0);
    EXPECT_EQ(chown(world.path("here/sticky/foreign").c_str(), 0, 0), 0);
    EXPECT_EQ(chown(world.path("here/sticky/own").c_str(), 65534, 65534), 0);
    EXPECT_EQ(chmod(world.path("here/sticky").c_str(), 01777), 0);
    EXPECT_EQ(seteuid(65534), 0);
    EXPECT_EQ(removalCode(world.path("here/sticky/foreign")), 513);
    EXPECT_EQ(removalCode(world.path("here/sticky/own")), 0);
  });
}

}  // namespace
}  // namespace vornix::contract
