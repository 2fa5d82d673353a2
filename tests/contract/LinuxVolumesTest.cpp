#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

#include "platform/files/Volumes.h"
#include "platform/linux/files/CanonicalPath.h"
#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

using Outcome = LinuxFileWorld::Outcome;

TEST(LinuxVolumes, KnowsTheSystemsOwn) {
  EXPECT_EQ(sharedVolumes().volumePathOf("/proc/self/status"), "/proc");
  EXPECT_EQ(sharedVolumes().volumePathOf("/proc/"), "/proc");
}

TEST(LinuxVolumes, KnowsNoVolumeOfAFolderThatAnotherCovers) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("disk");
    world.mount("disk");
    world.folder("disk/inner");
    world.enter("disk/inner");
    world.mount("disk");
    EXPECT_EQ(sharedVolumes().volumePathOf("."), std::nullopt);
    EXPECT_EQ(sharedVolumes().volumePathOf(world.path("disk")), world.path("disk"));
  });
  if (outcome == Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(LinuxVolumes, KnowsNoVolumeOfAFolderThatWasRemoved) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("gone");
    world.enter("gone");
    EXPECT_EQ(rmdir(world.path("gone").c_str()), 0);
    EXPECT_EQ(sharedVolumes().volumePathOf("x"), std::nullopt);
    EXPECT_EQ(sharedVolumes().volumePathOf("."), std::nullopt);
  });
}

TEST(LinuxVolumes, FindsTheVolumeOfWhatLiesTooDeepForAPath) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("disk");
    world.mount("disk");
    world.enter("disk");
    const std::string name(200, 'd');
    for (int depth = 0; depth * 200 < PATH_MAX + 1000; ++depth) {
      ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
      ASSERT_EQ(chdir(name.c_str()), 0);
    }
    ASSERT_GE(open("file", O_CREAT | O_CLOEXEC | O_WRONLY, 0600), 0);
    EXPECT_EQ(sharedVolumes().volumePathOf("file"), world.path("disk"));
    EXPECT_EQ(sharedVolumes().volumePathOf("missing"), std::nullopt);
  });
  if (outcome == Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(CanonicalPath, FollowsEveryLinkButTheLast) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.file("folder/file");
    world.link("link", "folder");
    world.link("folder/loop", "loop");
    world.enter("");
    struct Row {
      const char* path;
      const char* canonical;
    };
    for (const Row& row : {Row{"link", "link"},
                           {"link/", "folder"},
                           {"link/.", "folder"},
                           {"link/..", ""},
                           {"link/file", "folder/file"},
                           {"link//file", "folder/file"},
                           {"link/loop", "folder/loop"},
                           {"link/missing", "folder/missing"},
                           {"./folder/../link/file", "folder/file"}}) {
      EXPECT_EQ(canonicalPathOf(row.path), world.path(row.canonical)) << row.path;
    }
    for (const char* path : {"", "missing/x", "missing/", "folder/file/x", "folder/loop/x"}) {
      EXPECT_EQ(canonicalPathOf(path), std::nullopt) << path;
      EXPECT_NE(errno, 0) << path;
    }
  });
  EXPECT_EQ(canonicalPathOf("/"), "/");
  EXPECT_EQ(canonicalPathOf("//"), "/");
  EXPECT_EQ(canonicalPathOf("/."), "/");
}

}  // namespace
}  // namespace vornix::contract
