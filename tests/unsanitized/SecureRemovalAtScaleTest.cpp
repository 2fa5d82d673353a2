#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/files/FileRemover.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/DeepTree.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/OnVolume.h"
#include "tests/contract/support/PeakMemory.h"
#include "tests/contract/support/SwappedItems.h"

// Secure removal of deep and wide trees, and of what is exchanged again and again.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

constexpr long kMostKilobytes = 64L << 10;

int errorOfSecureRemoval(const std::string& path) {
  return sharedFileRemover().removefile(path, 0x11).errorNumber;
}

class SecureRemovalAtScale : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(SecureRemovalAtScale);

TEST_P(SecureRemovalAtScale, NeedsFewDescriptorsAndLittleMemoryForFoldersTenThousandDeep) {
  play([](LinuxFileWorld& world) {
    makeDeepTree(world.path("here/deep"), 10'000);
    const rlimit few{.rlim_cur = 80, .rlim_max = 80};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    const PeakMemory memory;
    EXPECT_EQ(errorOfSecureRemoval(world.path("here/deep")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/deep")));
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
  });
}

TEST_P(SecureRemovalAtScale, NeedsLittleMemoryForManyItemsInOneFolder) {
  constexpr int kItems = 60'000;
  play([](LinuxFileWorld& world) {
    world.folder("here/many");
    const FileDescriptor folder(open(world.path("here/many").c_str(), O_RDONLY | O_CLOEXEC));
    for (int number = 0; number < kItems; ++number) {
      const std::string name = "a name that is as long as many are " + std::to_string(number);
      // Folders too, more than names are kept for.
      const int made = number % 3 == 0 ? mkdirat(folder.get(), name.c_str(), 0700)
                                       : mknodat(folder.get(), name.c_str(), S_IFREG | 0600, 0);
      ASSERT_EQ(made, 0);
    }
    const PeakMemory memory;
    EXPECT_EQ(errorOfSecureRemoval(world.path("here/many")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/many")));
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes / 8);
  });
}

void race(const SwappedItems& items, const std::string& path, int swaps) {
  items.race(swaps, [&path] { (void)errorOfSecureRemoval(path); });
}

TEST_P(SecureRemovalAtScale, NeverTouchesWhatItemsAreSwappedForAgainAndAgain) {
  play([](LinuxFileWorld& world) {
    const SwappedItems items(world, "here", {.plantsNames = true});
    race(items, items.doomed(), kManySwaps);
  });
}

TEST_P(SecureRemovalAtScale, NeverTouchesWhatItemsAreSwappedForWhereTheKernelKeepsNobodyWithin) {
  play([](LinuxFileWorld& world) {
    const SwappedItems items(world, "here", {.plantsNames = true});
    failSystemCall(SYS_openat2, ENOSYS);
    race(items, items.doomed(), kSomeSwaps);
  });
}

TEST_P(SecureRemovalAtScale, NeverTouchesWhatTheItemItselfIsSwappedForAgainAndAgain) {
  for (const char* name : {"folder", "file"}) {
    play([name](LinuxFileWorld& world) {
      const SwappedItems items(world, "here", {.folder = "", .names = {name}});
      race(items, world.path("here") + "/" + name, kSomeSwaps);
    });
  }
}

}  // namespace
}  // namespace vornix::contract
