#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/DeepTree.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/PeakMemory.h"
#include "tests/contract/support/SwappedItems.h"
#include "tests/contract/support/TreeText.h"

// Moving across volumes where something goes wrong.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

void writeBytes(const std::string& path, std::size_t size) {
  std::ofstream(path, std::ios::binary) << std::string(size, 'x');
}

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Leaves the source as it was and nothing at the destination.
void expectFailure(LinuxFileWorld& world, std::int64_t code) {
  const std::string before = textOfTree(world.path("from"));
  std::optional<NSError> error;
  EXPECT_FALSE(LinuxFileWorld::files().moveItemAtPath(world.path("from/tree"),
                                                      world.path("to/tree"), &error));
  EXPECT_EQ(error->code, code);
  EXPECT_EQ(textOfTree(world.path("from")), before);
  EXPECT_TRUE(fs::is_empty(world.path("to")));
}

TEST(VolumeTrouble, LeavesNothingOnAVolumeThatIsFull) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    for (const char* name : {"from/tree/a/small", "from/tree/b/c/small", "from/tree/large"})
      world.file(name);
    writeBytes(world.path("from/tree/large"), 1'000'000);
    world.folder("to");
    world.mountSmall("to", "size=512k");
    expectFailure(world, 640);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(VolumeTrouble, LeavesNothingOnAVolumeWithTooFewInodes) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    for (int number = 0; number < 30; ++number)
      world.file("from/tree/" + std::to_string(number % 5) + "/" + std::to_string(number));
    world.folder("to");
    world.mountSmall("to", "nr_inodes=20");
    expectFailure(world, 640);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(VolumeTrouble, CopiesNothingToOrFromAReadOnlyVolume) {
  for (const char* readOnly : {"from", "to"}) {
    const auto outcome = LinuxFileWorld::play([readOnly](LinuxFileWorld& world) {
      world.folder("from");
      world.folder("to");
      world.mount(readOnly);
      world.file("from/tree/file");
      world.makeReadOnly(readOnly);
      expectFailure(world, 642);
    });
    if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
  }
}

TEST(VolumeTrouble, KeepsWhatStandsOnAVolumeWithoutATrash) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("volume");
    world.mount("volume");
    world.file("volume/tree/file");
    const std::string before = textOfTree(world.path("volume"));
    std::optional<NSError> error;
    EXPECT_FALSE(
        advancedMoveItemAtPath(LinuxFileWorld::files(), world.path("volume/tree"), "", &error));
    EXPECT_EQ(error->code, 512);
    EXPECT_EQ(textOfTree(world.path("volume")), before);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(VolumeTrouble, NeedsLittleMemoryForManyItemsInOneFolder) {
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

TEST(VolumeTrouble, NeedsNoMoreDescriptorsForFoldersTenThousandDeep) {
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

// Moves from the folder "from" to "to", out of memory or from what the world stands on.
class MoveInTrouble : public testing::TestWithParam<const char*> {
 protected:
  static void play(const std::function<void(LinuxFileWorld&)>& story) {
    const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
      for (const char* name : {"from", "to"}) world.folder(name);
      if (GetParam() == std::string("FromMemory")) world.mount("from");
      world.mount("to");
      story(world);
    });
    if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
  }
};

INSTANTIATE_TEST_SUITE_P(, MoveInTrouble, testing::Values("FromMemory", "FromDisk"),
                         [](const auto& each) { return std::string(each.param); });

void expectNoSecretIn(const std::string& folder) {
  for (const auto& item : fs::recursive_directory_iterator(folder)) {
    if (!fs::is_regular_file(item.symlink_status())) continue;
    ASSERT_NE(contentsOf(item.path()), SwappedItems::kSecret) << item.path();
  }
}

TEST_P(MoveInTrouble, NeverTouchesOrCopiesWhatItemsAreSwappedFor) {
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

TEST_P(MoveInTrouble, LosesNothingThatAnotherProcessAddsMeanwhile) {
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

TEST_P(MoveInTrouble, RefusesAFolderIntoItselfHoweverThatIsReached) {
  play([](LinuxFileWorld& world) {
    world.file("from/data/file");
    world.file("from/data/pub/deep/file");
    world.folder("from/data/volume");
    world.folder("bound");
    world.bind("from/data/pub", "bound");
    const std::string before = textOfTree(world.path("from"));
    for (const char* place : {"bound/data", "bound/deep/data"}) {
      std::optional<NSError> error;
      EXPECT_FALSE(LinuxFileWorld::files().moveItemAtPath(world.path("from/data"),
                                                          world.path(place), &error));
      EXPECT_EQ(error->underlyingErrno, EINVAL) << place;
      EXPECT_EQ(error->code, 512) << place;
    }
    for (const char* name : {"bound", "bound/deep"}) {
      for (const auto& item : fs::directory_iterator(world.path(name)))
        EXPECT_FALSE(item.path().filename().native().starts_with(".vornix")) << item.path();
    }
    world.mount("from/data/volume");
    std::optional<NSError> error;
    EXPECT_FALSE(LinuxFileWorld::files().moveItemAtPath(
        world.path("from/data"), world.path("from/data/volume/data"), &error));
    EXPECT_EQ(error->underlyingErrno, EINVAL);
    EXPECT_TRUE(fs::is_empty(world.path("from/data/volume")));
    EXPECT_TRUE(fs::exists(world.path("from/data/pub/deep/file")));
  });
}

}  // namespace
}  // namespace vornix::contract
