#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/InterceptedCalls.h"
#include "tests/contract/support/OnVolume.h"
#include "tests/contract/support/TreeText.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

std::int64_t removalCode(const std::string& path) {
  std::optional<NSError> error;
  const bool isRemoved = NSFileManager::defaultManager().removeItemAtPath(path, &error);
  EXPECT_EQ(isRemoved, !error.has_value());
  EXPECT_EQ(isRemoved, !fs::exists(fs::symlink_status(path)));
  return error ? error->code : 0;
}

class FileRemovalOn : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(FileRemovalOn);

TEST_P(FileRemovalOn, TakesWhatAnotherProcessRemovesMeanwhileForRemoved) {
  play([&](LinuxFileWorld& world) {
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
      // At this instant, whether the other process has come to its end or not.
      EXPECT_FALSE(fs::exists(world.path("here/both")));
      EXPECT_TRUE(isRemoved || error->code == NSFileNoSuchFileError) << error->description();
      EXPECT_EQ(other.awaitEnd(), 0);
    }
  });
}

TEST_P(FileRemovalOn, TakesAFolderThatIsRemovedBeforeItIsReadForEmpty) {
  play([&](LinuxFileWorld& world) {
    for (const char* name : {"here/top/a", "here/top/b", "here/top/c"})
      world.file(name + std::string("/file"));
    interceptCalls({SYS_getdents64}, [](const seccomp_data& call) {
      const fs::path folder = fs::read_symlink("/proc/self/fd/" + std::to_string(call.args[0]));
      if (folder.filename() == "b") fs::remove_all(folder);
    });
    EXPECT_EQ(removalCode(world.path("here/top")), 0);
  });
}

TEST_P(FileRemovalOn, LooksOnceMoreIntoEachFolderThatIsFilledMeanwhile) {
  constexpr int kFolders = 150;
  play([&](LinuxFileWorld& world) {
    for (int number = 0; number < kFolders; ++number)
      world.folder("here/top/" + std::to_string(number));
    std::set<std::string> filled;
    std::mutex mutex;
    interceptCalls({SYS_unlinkat}, [&](const seccomp_data& call) {
      const std::string name = textAt(call.args[1]);
      const std::lock_guard lock(mutex);
      if (call.args[2] != AT_REMOVEDIR || !filled.insert(name).second) return;
      world.file((name == "top" ? "here/top/" : "here/top/" + name) + "/late");
    });
    EXPECT_EQ(removalCode(world.path("here/top")), 0);
    const std::lock_guard lock(mutex);
    EXPECT_EQ(filled.size(), kFolders + 1);
  });
}

TEST(LinuxFileRemoval, GivesUpOnAFolderThatIsFilledForever) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("top/folder");
    interceptCalls({SYS_unlinkat}, [&](const seccomp_data& call) {
      if (call.args[2] == AT_REMOVEDIR) world.file("top/folder/late");
    });
    EXPECT_EQ(removalCode(world.path("top")), 513);
  });
}

TEST_P(FileRemovalOn, EmptiesTheFolderThatWasListedWhateverStandsAtItsPathThen) {
  play([&](LinuxFileWorld& world) {
    for (const char* folder : {"here/folder", "here/other"}) {
      for (const char* name : {"/a", "/b", "/c/file"}) world.file(std::string(folder) + name);
    }
    const std::string other = textOfTree(world.path("here/other"));
    interceptCalls({SYS_unlinkat}, [&world, isSwapped = false](const seccomp_data&) mutable {
      if (std::exchange(isSwapped, true)) return;
      fs::rename(world.path("here/folder"), world.path("here/moved"));
      fs::create_symlink("other", world.path("here/folder"));
    });
    EXPECT_TRUE(
        removeContentsOfDirectoryAtPath(LinuxFileWorld::files(), world.path("here/folder")));
    EXPECT_EQ(textOfTree(world.path("here/other")), other);
    EXPECT_TRUE(fs::is_empty(world.path("here/moved")));
  });
}

TEST(LinuxFileRemoval, FindsNothingBelowACurrentFolderThatIsGone) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.file("folder/file");
    world.folder("gone");
    world.enter("gone");
    EXPECT_EQ(rmdir(world.path("gone").c_str()), 0);
    NSFileManager& files = LinuxFileWorld::files();
    EXPECT_EQ(files.currentDirectoryPath(), "");
    // What it would be below the root.
    const std::string path = world.path("folder").substr(1);
    EXPECT_EQ(NSURL::fileURLWithPath(path).path(), "");
    EXPECT_FALSE(removeContentsOfDirectoryAtPath(files, path));
    // To another place, to a place below the current folder, to the Trash.
    for (const std::string& place :
         {world.path("elsewhere"), path + "/elsewhere", std::string("elsewhere")}) {
      std::optional<NSError> error;
      EXPECT_FALSE(advancedMoveItemAtPath(files, path + "/file", place, &error)) << place;
      EXPECT_EQ(error->code, 4) << place;
    }
    std::optional<NSError> error;
    EXPECT_FALSE(files.contentsOfDirectoryAtURL(NSURL::fileURLWithPath(path), 0, &error));
    EXPECT_EQ(error->code, 260);
    EXPECT_TRUE(fs::exists(world.path("folder/file")));
  });
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
  play([&](LinuxFileWorld& world) {
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
  play([&](LinuxFileWorld& world) {
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
