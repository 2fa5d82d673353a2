#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/Walks.h"

namespace vornix::contract {
namespace {

using enum HierarchyKind;

constexpr HierarchyOptions kPlain{.noStatus = true};
constexpr int kManyItems = 60'000;
constexpr int kMoreThanStayOpen = 300;

template <typename World>
class LinuxFileHierarchy : public testing::Test {};

using Worlds = testing::Types<LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(LinuxFileHierarchy, Worlds);

struct Tally {
  int folders = 0;
  int ends = 0;
  int others = 0;
  int troubles = 0;
  std::size_t longestPath = 0;

  friend bool operator==(const Tally&, const Tally&) = default;
};

Tally tallyOf(const std::string& path, HierarchyOptions options = kPlain) {
  Tally tally;
  const auto walk = NSFileManager::defaultManager().hierarchyAtPath(path, options);
  while (const HierarchyEntry* entry = walk->read()) {
    tally.longestPath = std::max(tally.longestPath, entry->path.size());
    switch (entry->kind) {
      case folder:
        ++tally.folders;
        break;
      case folderEnd:
        ++tally.ends;
        break;
      case notAsked:
        ++tally.others;
        break;
      default:
        ++tally.troubles;
    }
  }
  return tally;
}

constexpr int kBesideEvery = 20;

// So many folders in one another, here and there with another folder and a file beside the next.
void makeDeep(const std::string& path, int depth) {
  std::filesystem::create_directory(path);
  FileDescriptor at(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (int level = 0; level < depth; ++level) {
    ASSERT_EQ(mkdirat(at.get(), "next", 0700), 0);
    if (level % kBesideEvery == 0) {
      ASSERT_EQ(mkdirat(at.get(), "beside", 0700), 0);
      ASSERT_EQ(mknodat(at.get(), "beside/file", S_IFREG | 0600, 0), 0);
    }
    at = FileDescriptor(openat(at.get(), "next", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_TRUE(at.isOpen());
  }
}

void limitDescriptors(rlim_t most) {
  const rlimit limit{most, most};
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

std::size_t openDescriptors() {
  return static_cast<std::size_t>(
      std::ranges::distance(std::filesystem::directory_iterator("/proc/self/fd")));
}

long peakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TYPED_TEST(LinuxFileHierarchy, WalksTenThousandFoldersInOneAnotherWithFewDescriptors) {
  constexpr int depth = 10'000;
  constexpr int beside = depth / kBesideEvery;
  const Tally whole{
      .folders = depth + beside + 1,
      .ends = depth + beside + 1,
      .others = beside,
      .longestPath = std::string_view("deep").size() + depth * std::string_view("/next").size()};
  TypeParam::play([&whole](TypeParam& world) {
    world.enter("");
    makeDeep("deep", depth);
    EXPECT_EQ(tallyOf("deep"), whole);
    EXPECT_EQ(tallyOf("deep", {.noStatus = true, .noCrossing = true}), whole);
    limitDescriptors(40);
    EXPECT_EQ(tallyOf("deep"), whole);
    limitDescriptors(openDescriptors() + 3);
    EXPECT_EQ(tallyOf("deep"), whole);
    EXPECT_TRUE(world.files().removeItemAtPath("deep"));
  });
}

TYPED_TEST(LinuxFileHierarchy, TellsWholePathsThatAreLongerThanTheSystemTakes) {
  TypeParam::play([](TypeParam& world) {
    const std::string name(250, 'x');
    world.folder("top");
    world.enter("top");
    std::string path = "top";
    for (int level = 0; level < 40; ++level) {
      ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
      ASSERT_EQ(chdir(name.c_str()), 0);
      path += "/" + name;
    }
    ASSERT_TRUE(std::ofstream("file").good());
    world.enter("");
    const auto walk = world.files().hierarchyAtPath("top", kPlain);
    const Steps steps = stepsOf(*walk);
    EXPECT_EQ(faultIn(steps), "");
    EXPECT_EQ(steps.size(), 83U);
    EXPECT_NE(std::ranges::find(steps, Step{notAsked, path + "/file", 41}), steps.end());
    EXPECT_TRUE(world.files().removeItemAtPath("top"));
  });
}

TYPED_TEST(LinuxFileHierarchy, TakesLittleMemoryForManyItemsInOneFolder) {
  TypeParam::play([](TypeParam& world) {
    world.folder("many");
    world.enter("many");
    ASSERT_EQ(mknod("first", S_IFREG | 0600, 0), 0);
    for (int number = 1; number < kManyItems; ++number) {
      const std::string name = "some item with a name " + std::to_string(number);
      ASSERT_EQ(link("first", name.c_str()), 0);
    }
    world.enter("");
    tallyOf("many/first");
    const long before = peakKilobytes();
    EXPECT_EQ(tallyOf("many").others, kManyItems);
    // All names together take four megabytes.
    EXPECT_LT(peakKilobytes() - before, 1000);
  });
}

TYPED_TEST(LinuxFileHierarchy, LeavesNoDescriptorOpen) {
  TypeParam::play([](TypeParam& world) {
    world.enter("");
    makeDeep("deep", 200);
    const std::size_t before = openDescriptors();
    EXPECT_EQ(tallyOf("deep").troubles, 0);
    EXPECT_EQ(openDescriptors(), before);
    const auto walk = world.files().hierarchyAtPath("deep", kPlain);
    for (int entry = 0; entry < 300; ++entry) (void)walk->read();
    EXPECT_GT(openDescriptors(), before);
    walk->close();
    EXPECT_EQ(openDescriptors(), before);
  });
}

TYPED_TEST(LinuxFileHierarchy, TellsThatDescriptorsRanOutInPlaceOfAFoldersEnd) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/file");
    world.enter("");
    const auto walk = world.files().hierarchyAtPath("top", kPlain);
    ASSERT_EQ(walk->read()->kind, folder);
    std::vector<FileDescriptor> hoard;
    while (hoard.empty() || hoard.back().isOpen())
      hoard.emplace_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(walk->read()->kind, folder);
    const HierarchyEntry* entry = walk->read();
    EXPECT_EQ(entry->kind, unreadableFolder);
    EXPECT_EQ(entry->error, EMFILE);
    EXPECT_EQ(walk->read()->kind, folderEnd);
    EXPECT_EQ(walk->read(), nullptr);
  });
}

TYPED_TEST(LinuxFileHierarchy, GoesOnBesideADeepFolderThatIsMovedAwayMeanwhile) {
  TypeParam::play([](TypeParam& world) {
    world.enter("");
    makeDeep("deep", kMoreThanStayOpen);
    world.folder("elsewhere");
    bool isMoved = false;
    int files = 0;
    const auto walk = world.files().hierarchyAtPath("deep", kPlain);
    while (const HierarchyEntry* entry = walk->read()) {
      if (entry->kind == notAsked) ++files;
      // In the innermost folder, whose parents are closed.
      if (entry->level == kMoreThanStayOpen && entry->kind == folder && !isMoved) {
        FileDescriptor parent(open("deep", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 1; level < 250; ++level)
          parent = FileDescriptor(openat(parent.get(), "next", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_EQ(renameat(parent.get(), "next", AT_FDCWD, "elsewhere/next"), 0);
        isMoved = true;
      }
    }
    EXPECT_TRUE(isMoved);
    EXPECT_EQ(files, kMoreThanStayOpen / kBesideEvery);
    EXPECT_TRUE(world.files().removeItemAtPath("deep"));
    EXPECT_TRUE(world.files().removeItemAtPath("elsewhere"));
  });
}

TYPED_TEST(LinuxFileHierarchy, StandsFoldersAndFilesThatVanishWhileItWalks) {
  TypeParam::play([](TypeParam& world) {
    for (const bool isBefore : {true, false}) {
      for (int number = 0; number < 40; ++number) {
        world.file("top/" + std::to_string(number) + "/inner/file");
        world.file("top/" + std::to_string(number) + "/inner/folder/file");
      }
      world.enter("");
      Steps steps;
      const auto walk = world.files().hierarchyAtPath("top", kPlain);
      while (const HierarchyEntry* entry = walk->read()) {
        const std::string path(entry->path);
        steps.push_back({entry->kind, path, entry->level});
        const HierarchyKind when = isBefore ? folder : folderEnd;
        if (entry->level == 2 && entry->kind == when) std::filesystem::remove_all(path);
        if (entry->level == 3) std::filesystem::remove_all(path);
      }
      EXPECT_EQ(faultIn(steps), "");
      EXPECT_EQ(std::ranges::count(steps, folder, &Step::kind), isBefore ? 81 : 121);
      EXPECT_EQ(std::ranges::count(steps, unreadableFolder, &Step::kind), 0);
      std::filesystem::remove_all("top");
    }
  });
}

TYPED_TEST(LinuxFileHierarchy, TellsNothingOfFoldersThatVanishedBeforeItCameToThem) {
  TypeParam::play([](TypeParam& world) {
    for (int number = 0; number < 40; ++number)
      world.file("top/" + std::to_string(number) + "/file");
    world.enter("");
    const auto walk = world.files().hierarchyAtPath("top", kPlain);
    ASSERT_EQ(walk->read()->kind, folder);
    const std::string first(walk->read()->path);
    for (const auto& item : std::filesystem::directory_iterator("top")) {
      if (item.path() != first) std::filesystem::remove_all(item.path());
    }
    for (const HierarchyKind kind : {notAsked, folderEnd}) EXPECT_EQ(walk->read()->kind, kind);
    for (int number = 0; number < 39; ++number) {
      const HierarchyEntry* entry = walk->read();
      EXPECT_EQ(entry->kind, noStatus);
      EXPECT_EQ(entry->error, ENOENT);
    }
    EXPECT_EQ(walk->read()->kind, folderEnd);
  });
}

}  // namespace
}  // namespace vornix::contract
