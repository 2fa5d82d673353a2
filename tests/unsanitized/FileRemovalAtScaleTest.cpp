#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/DeepTree.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/OnVolume.h"
#include "tests/contract/support/PeakMemory.h"
#include "tests/contract/support/SwappedItems.h"

// Removal of deep and wide trees, and of what is exchanged again and again.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

constexpr long kMostKilobytes = 64L << 10;

void expectRemoval(const std::string& path) {
  EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath(path));
  EXPECT_FALSE(fs::exists(fs::symlink_status(path)));
}

class FileRemovalAtScale : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(FileRemovalAtScale);

TEST_P(FileRemovalAtScale, NeedsNoMoreDescriptorsAndMemoryForDeepFolders) {
  const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
    world.folder("here");
    // Many new folders far apart on a real disk are minutes of its arm's work.
    if (GetParam() == KindOfVolume::tmpfs)
      world.mount("here");
    else
      world.mountImage("here", "-b 1024 -I 128 -N 21000 -O ^has_journal");
    makeDeepTree(world.path("here/deep"), 10'000);
    const rlimit few{.rlim_cur = 64, .rlim_max = 64};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    const PeakMemory memory;
    expectRemoval(world.path("here/deep"));
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(FileRemovalAtScale, NeedsLittleMemoryForManyItemsInOneFolder) {
  // Disks are slow to make many items.
  const int items = GetParam() == KindOfVolume::tmpfs ? 100'000 : 20'000;
  play([&](LinuxFileWorld& world) {
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
    expectRemoval(world.path("here/many"));
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes / 8);
  });
}

TEST(FileRemovalOfManyItems, NeedsLittleMemoryToEmptyAFolderOfManyItems) {
  constexpr int kItems = 200'000;
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("many");
    world.mount("many");
    const FileDescriptor folder(open(world.path("many").c_str(), O_RDONLY | O_CLOEXEC));
    for (int number = 0; number < kItems; ++number) {
      const std::string name = "a name of 25 bytes " + std::to_string(100'000 + number);
      ASSERT_EQ(mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0), 0);
    }
    const PeakMemory memory;
    EXPECT_TRUE(removeContentsOfDirectoryAtPath(LinuxFileWorld::files(), world.path("many")));
    EXPECT_TRUE(fs::is_empty(world.path("many")));
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes / 5);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(FileRemovalAtScale, NeverTouchesWhatItemsAreSwappedFor) {
  play([&](LinuxFileWorld& world) {
    // One system call is enough to open a folder; another way is for systems that lack it.
    for (const bool hasCall : {true, false}) {
      if (!hasCall) failSystemCall(SYS_openat2, ENOSYS);
      const SwappedItems items(world, "here");
      items.race(hasCall ? kManySwaps : kSomeSwaps, [&items] {
        (void)NSFileManager::defaultManager().removeItemAtPath(items.doomed());
      });
    }
  });
}

}  // namespace
}  // namespace vornix::contract
