#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/CrossingVolumes.h"
#include "tests/contract/support/DeepTree.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/PeakMemory.h"
#include "tests/contract/support/SwappedItems.h"

// Moving deep and wide trees across volumes, and what is exchanged and added meanwhile.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(MoveOfLargeTrees, NeedsLittleMemoryForManyItemsInOneFolder) {
  constexpr int kItems = 50'000;
  constexpr long kMostKilobytes = 8L << 10;
  const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
    for (const char* name : {"from", "to"}) {
      world.folder(name);
      world.mount(name);
    }
    world.folder("from/tree");
    for (int number = 0; number < kItems; ++number) {
      ASSERT_EQ(mknod(world.path("from/tree/" + std::to_string(number)).c_str(), S_IFREG | 0600, 0),
                0);
    }
    const PeakMemory memory;
    EXPECT_TRUE(
        LinuxFileWorld::files().moveItemAtPath(world.path("from/tree"), world.path("to/tree")));
    EXPECT_LT(memory.growthInKilobytes(), kMostKilobytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(world.path("to/tree")), {}), kItems);
    EXPECT_TRUE(fs::is_empty(world.path("from")));
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(MoveOfLargeTrees, NeedsNoMoreDescriptorsForFoldersTenThousandDeep) {
  constexpr int kDepth = 10'000;
  const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
    for (const char* name : {"from", "to"}) {
      world.folder(name);
      world.mount(name);
    }
    makeDeepTree(world.path("from/tree"), kDepth);
    const rlimit few{.rlim_cur = 128, .rlim_max = 128};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    EXPECT_TRUE(
        LinuxFileWorld::files().moveItemAtPath(world.path("from/tree"), world.path("to/tree")));
    EXPECT_EQ(depthOfTree(world.path("to/tree")), kDepth);
    EXPECT_TRUE(fs::is_empty(world.path("from")));
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

class MoveAtScale : public CrossingVolumes {};

INSTANTIATE_TEST_SUITE_P(, MoveAtScale,
                         testing::Values(Crossing{"FromMemory", "memory", "memory"},
                                         Crossing{"FromDisk", "here", "memory"}),
                         [](const auto& each) { return std::string(each.param.name); });

void expectNoSecretIn(const std::string& folder) {
  for (const auto& item : fs::recursive_directory_iterator(folder)) {
    if (!fs::is_regular_file(item.symlink_status())) continue;
    ASSERT_NE(contentsOf(item.path()), SwappedItems::kSecret) << item.path();
  }
}

TEST_P(MoveAtScale, NeverTouchesOrCopiesWhatItemsAreSwappedFor) {
  play([](LinuxFileWorld& world) {
    // One system call is enough to open a folder; another way is for systems that lack it.
    for (const bool hasCall : {true, false}) {
      if (!hasCall) failSystemCall(SYS_openat2, ENOSYS);
      const SwappedItems items(world, "from");
      items.race(hasCall ? kManySwaps : kSomeSwaps, [&] {
        (void)LinuxFileWorld::files().moveItemAtPath(items.doomed(), world.path("to/moved"));
        ASSERT_NO_FATAL_FAILURE(expectNoSecretIn(world.path("to")));
        (void)LinuxFileWorld::files().removeItemAtPath(world.path("to/moved"));
      });
    }
  });
}

std::string nameOfAdded(int number) {
  return "/" + std::to_string(number % 3) + "/" + std::to_string(number);
}

// Whole files, one after the other, as long as there is a folder for them.
[[noreturn]] void addFiles(LinuxFileWorld& world) {
  constexpr int kMostFiles = 2'000;
  const std::string fresh = world.path("from/fresh");
  int number = 0;
  for (; number < kMostFiles; ++number) {
    std::ofstream(fresh) << number;
    if (number == 20) ForkedProcess::isReady();
    if (rename(fresh.c_str(), world.path("from/tree" + nameOfAdded(number)).c_str()) != 0) break;
  }
  std::ofstream(world.path("from/count")) << number;
  _exit(0);
}

TEST_P(MoveAtScale, LosesNothingThatAnotherProcessAddsMeanwhile) {
  play([](LinuxFileWorld& world) {
    int failures = 0;
    for (int round = 0; round < 20; ++round) {
      for (const char* name : {"0", "1", "2"}) world.folder("from/tree/" + std::string(name));
      ForkedProcess other([&world] { addFiles(world); });
      other.awaitReady();
      failures +=
          !LinuxFileWorld::files().moveItemAtPath(world.path("from/tree"), world.path("to/tree"));
      EXPECT_EQ(other.awaitEnd(), 0);
      const int count = std::stoi(contentsOf(world.path("from/count")));
      for (int number = 0; number < count; ++number) {
        const std::string name = nameOfAdded(number);
        ASSERT_TRUE(contentsOf(world.path("from/tree" + name)) == std::to_string(number) ||
                    contentsOf(world.path("to/tree" + name)) == std::to_string(number))
            << name;
      }
      for (const char* name : {"from/tree", "to/tree"}) fs::remove_all(world.path(name));
    }
    EXPECT_GT(failures, 0) << "nothing was ever added in time";
  });
}

}  // namespace
}  // namespace vornix::contract
