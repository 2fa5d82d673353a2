#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/CrossingVolumes.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/TreeText.h"

// Moving across volumes where something goes wrong.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

void writeBytes(const std::string& path, std::size_t size) {
  std::ofstream(path, std::ios::binary) << std::string(size, 'x');
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

class MoveInTrouble : public CrossingVolumes {};

INSTANTIATE_TEST_SUITE_P(, MoveInTrouble,
                         testing::Values(Crossing{"FromMemory", "memory", "memory"},
                                         Crossing{"FromDisk", "here", "memory"}),
                         [](const auto& each) { return std::string(each.param.name); });

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
