#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>

#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/FolderHandle.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/Walks.h"

namespace vornix::contract {
namespace {

using enum HierarchyKind;

constexpr HierarchyOptions kPlain{.noStatus = true};
constexpr HierarchyOptions kOneDevice{.noStatus = true, .noCrossing = true};

// A few items in "top", and what a walk tells of them.
Steps plant(LinuxFileWorld& world) {
  world.file("top/folder/inner");
  world.folder("top/folder/empty");
  world.file("top/file");
  world.link("top/link", "folder");
  return sorted({{folder, "top", 0},
                 {folder, "top/folder", 1},
                 {folder, "top/folder/empty", 2},
                 {folderEnd, "top", 0},
                 {folderEnd, "top/folder", 1},
                 {folderEnd, "top/folder/empty", 2},
                 {notAsked, "top/file", 1},
                 {notAsked, "top/folder/inner", 2},
                 {notAsked, "top/link", 1}});
}

// From now on the kernel is, for this process, one that does not have the call, or hides it.
void refuseOpenat2(int error) {
  failSystemCall(SYS_openat2, error);
  EXPECT_EQ(syscall(SYS_openat2, AT_FDCWD, "/", nullptr, 0), -1);
  EXPECT_EQ(errno, error);
}

unsigned char typeToldOf(const std::string& folderPath, std::string_view name) {
  const FolderHandle folder = openFolder(folderPath);
  while (const dirent* item = readdir(folder.get())) {
    if (item->d_name == name) return item->d_type;
  }
  ADD_FAILURE() << name;
  return DT_WHT;
}

void expectPlayed(LinuxFileWorld::Outcome outcome) {
  if (outcome == LinuxFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(UnusualFileSystems, WalksWhereFoldersDoNotTellTypes) {
  expectPlayed(LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("top");
    world.mountImage("top", "-O ^filetype");
    ASSERT_EQ(rmdir(world.path("top/lost+found").c_str()), 0);
    const Steps expected = plant(world);
    ASSERT_EQ(typeToldOf(world.path("top"), "folder"), DT_UNKNOWN);
    world.enter("");
    EXPECT_EQ(sortedWalk(world.files(), "top", kPlain), expected);
    EXPECT_EQ(sortedWalk(world.files(), "top", kOneDevice), expected);
    Steps kinds = sortedWalk(world.files(), "top", {});
    EXPECT_EQ(std::ranges::count(kinds, file, &Step::kind), 2);
    EXPECT_EQ(std::ranges::count(kinds, symbolicLink, &Step::kind), 1);
    const auto urls =
        world.files().contentsOfDirectoryAtURL(NSURL::fileURLWithPath(world.path("top"), true));
    ASSERT_EQ(urls.value_or(std::vector<NSURL>()).size(), 3U);
    for (const NSURL& url : *urls)
      EXPECT_EQ(url.hasDirectoryPath(), url.path().ends_with("/folder")) << url.path();
  }));
}

TEST(UnusualFileSystems, ReadsFoldersToTheirEndWhereTheLastItemIsNotMarked) {
  expectPlayed(LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("top");
    world.mountImage("top", "-O ^dir_index -N 4000");
    for (int number = 0; number < 2000; ++number) {
      const std::string name = std::string(40, 'x') + std::to_string(number);
      ASSERT_EQ(mknod(world.path("top/" + name).c_str(), S_IFREG | 0600, 0), 0);
    }
    world.enter("");
    // With the folder's two entries and those of "lost+found".
    EXPECT_EQ(sortedWalk(world.files(), "top", kPlain).size(), 2004U);
  }));
}

TEST(UnusualFileSystems, WalksWhereFoldersCountNoLinks) {
  expectPlayed(LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("layers");
    world.mount("layers");
    for (const char* name : {"layers/lower", "layers/upper", "layers/work", "top"})
      world.folder(name);
    world.folder("layers/lower/folder");
    const std::string layers = world.path("layers");
    const std::string options =
        "lowerdir=" + layers + "/lower,upperdir=" + layers + "/upper,workdir=" + layers + "/work";
    ASSERT_EQ(::mount("overlay", world.path("top").c_str(), "overlay", 0, options.c_str()), 0);
    const Steps expected = plant(world);
    struct stat status {};
    ASSERT_EQ(stat(world.path("top/folder").c_str(), &status), 0);
    ASSERT_EQ(status.st_nlink, 1U);
    world.enter("");
    EXPECT_EQ(sortedWalk(world.files(), "top", kPlain), expected);
    EXPECT_EQ(sortedWalk(world.files(), "top", kOneDevice), expected);
  }));
}

TEST(UnusualFileSystems, DoesNotEnterAFolderThatLedToIt) {
  expectPlayed(LinuxFileWorld::play([](LinuxFileWorld& world) {
    Steps expected = plant(world);
    world.bind("top", "top/folder/empty");
    world.enter("");
    std::erase(expected, Step{folderEnd, "top/folder/empty", 2});
    for (Step& step : expected) {
      if (step.path == "top/folder/empty") step.kind = folderCycle;
    }
    EXPECT_EQ(sortedWalk(world.files(), "top", kPlain), sorted(expected));
    EXPECT_EQ(sortedWalk(world.files(), "top", kOneDevice), sorted(expected));
  }));
}

class WithoutOpenat2 : public testing::TestWithParam<int> {};

TEST_P(WithoutOpenat2, WalksAsWithIt) {
  expectPlayed(LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("top/mount/covered");
    world.folder("top/bound");
    plant(world);
    world.mount("top/mount");
    world.file("top/mount/inner");
    world.bind("top", "top/bound");
    world.enter("");
    const Steps plain = sortedWalk(world.files(), "top", kPlain);
    const Steps oneDevice = sortedWalk(world.files(), "top", kOneDevice);
    EXPECT_EQ(std::ranges::count(plain, folderCycle, &Step::kind), 1);
    EXPECT_LT(oneDevice.size(), plain.size());
    refuseOpenat2(GetParam());
    EXPECT_EQ(sortedWalk(world.files(), "top", kPlain), plain);
    EXPECT_EQ(sortedWalk(world.files(), "top", kOneDevice), oneDevice);
  }));
}

INSTANTIATE_TEST_SUITE_P(UnusualFileSystems, WithoutOpenat2, testing::Values(ENOSYS, EPERM),
                         [](const auto& row) {
                           return row.param == ENOSYS ? "UnknownToTheKernel" : "HiddenByASandbox";
                         });

TEST(UnusualFileSystems, NeverEntersALinkThatSomebodyPutsInTheFoldersPlace) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    constexpr int swaps = 20'000;
    world.file("canary/never told");
    world.file("top/folder/inner");
    world.link("top/link", world.path("canary"));
    const FileDescriptor top(open(world.path("top").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::atomic<bool> isDone = false;
    std::thread swapper([&] {
      for (int swap = 0; swap < swaps; ++swap)
        EXPECT_EQ(renameat2(top.get(), "folder", top.get(), "link", RENAME_EXCHANGE), 0);
      isDone = true;
    });
    int entered = 0;
    while (!isDone) {
      const auto walk = world.files().hierarchyAtPath(world.path("top"), kPlain);
      while (const HierarchyEntry* entry = walk->read()) {
        EXPECT_NE(entry->name, "never told");
        if (entry->name == "inner") ++entered;
      }
    }
    swapper.join();
    EXPECT_GT(entered, 0);
  });
}

}  // namespace
}  // namespace vornix::contract
