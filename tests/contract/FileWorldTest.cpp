#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/vfs.h>

#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/KindOfVolume.h"

namespace vornix::contract {
namespace {

long magicOf(const LinuxFileWorld& world) {
  struct statfs found {};
  EXPECT_EQ(statfs(world.path("").c_str(), &found), 0);
  return found.f_type;
}

// What suites that are run in both worlds stand on.
TEST(FileWorlds, AreOnADiskAndInMemory) {
  EXPECT_EQ(magicOf(TmpfsFileWorld()), TMPFS_MAGIC);
  VORNIX_NEED_VOLUME(KindOfVolume::ext4);
  EXPECT_EQ(magicOf(LinuxFileWorld()), EXT4_SUPER_MAGIC);
}

}  // namespace
}  // namespace vornix::contract
