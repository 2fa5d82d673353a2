#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

template <typename World>
class FileSearch : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(FileSearch, Worlds);

constexpr bool kByWords = true;
constexpr bool kByPart = false;
constexpr bool kRecursive = true;
constexpr bool kFlat = false;

// In order, and relative to the searched folder.
template <typename World>
std::vector<std::string> found(World& world, std::string_view name, const std::string& path,
                               bool byWords, bool recursive,
                               const std::vector<std::string>& leftOut = {}) {
  auto paths = findFile(world.files(), name, path, byWords, recursive, leftOut);
  for (std::string& each : paths) {
    EXPECT_TRUE(each.starts_with(world.path(""))) << each;
    each.erase(0, world.path("").size() + 1);
  }
  std::ranges::sort(paths);
  return paths;
}

using Paths = std::vector<std::string>;

TYPED_TEST(FileSearch, MatchesWordsInAnyOrderWithoutExtensionButNoNumberedCopiesAndNoBundles) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/Disk Utility.plist");
    world.file("top/Utility Disk.plist");
    world.file("top/Disk Utility 2.plist");
    world.folder("top/Disk Utility.app");
    world.file("top/Disk.plist");
    for (const bool recursive : {kFlat, kRecursive}) {
      EXPECT_EQ(found(world, "Disk Utility", world.path("top"), kByWords, recursive),
                (Paths{"top/Disk Utility.plist", "top/Utility Disk.plist"}));
    }
    EXPECT_EQ(found(world, "utility.APP disk", world.path("top"), kByWords, kFlat),
              (Paths{"top/Disk Utility.app", "top/Disk Utility.app"}));
  });
}

TYPED_TEST(FileSearch, MatchesPartsOfNamesWithTheirExtension) {
  TypeParam::play([](TypeParam& world) {
    for (const char* name : {"com.example.App.plist", "APP", "app 2", "app2.txt", "app.2", "other"})
      world.file("top/" + std::string(name));
    EXPECT_EQ(found(world, "App", world.path("top"), kByPart, kFlat),
              (Paths{"top/APP", "top/app.2", "top/com.example.App.plist"}));
    EXPECT_EQ(found(world, "app.PLIST", world.path("top"), kByPart, kFlat),
              (Paths{"top/com.example.App.plist"}));
  });
}

TYPED_TEST(FileSearch, FindsNothingInTheRootOrWithoutANameOrAPath) {
  TypeParam::play([](TypeParam& world) {
    world.file("file");
    world.enter("");
    for (const bool recursive : {kFlat, kRecursive}) {
      for (const char* path : {"", "/", "."})
        EXPECT_TRUE(findFile(world.files(), "file", path, kByPart, recursive).empty()) << path;
      EXPECT_TRUE(findFile(world.files(), "", world.path(""), kByPart, recursive).empty());
      EXPECT_TRUE(findFile(world.files(), "file", "missing", kByPart, recursive).empty());
      EXPECT_TRUE(findFile(world.files(), "file", "file", kByPart, recursive).empty());
    }
  });
}

TYPED_TEST(FileSearch, TellsADeeperItemAsIfItLayInTheSearchedFolder) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/one/two/target");
    EXPECT_EQ(found(world, "target", world.path("top"), kByPart, kRecursive), Paths{"top/target"});
    EXPECT_EQ(found(world, "target", world.path("top"), kByPart, kFlat), Paths{});
  });
}

TYPED_TEST(FileSearch, KeepsTheExtensionOfADeepFileWhereAFolderOfThatNameLiesInTheSearchedFolder) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/one/target.app");
    EXPECT_EQ(found(world, "target", world.path("top"), kByWords, kRecursive),
              Paths{"top/target.app"});
    world.folder("top/target.app");
    EXPECT_EQ(found(world, "target", world.path("top"), kByWords, kRecursive), Paths{});
  });
}

TYPED_TEST(FileSearch, TellsAFolderTwice) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/target/inner");
    for (const bool recursive : {kFlat, kRecursive}) {
      EXPECT_EQ(found(world, "target", world.path("top"), kByPart, recursive),
                (Paths{"top/target", "top/target"}));
    }
  });
}

TYPED_TEST(FileSearch, PassesOverWhatBearsTheSearchedFoldersNameButEntersIt) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/top/top inner");
    // It is entered even by a search that is not recursive.
    for (const bool recursive : {kFlat, kRecursive}) {
      EXPECT_EQ(found(world, "top", world.path("top"), kByPart, recursive), Paths{"top/top inner"});
    }
  });
}

TYPED_TEST(FileSearch, LeavesOutListedNamesAndAllBelowThem) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/target kept/target a");
    world.file("top/target left/target b");
    world.file("top/deep/target left/target c");
    world.file("top/deep/Target Left");
    EXPECT_EQ(found(world, "target", world.path("top"), kByPart, kRecursive, {"x", "target left"}),
              (Paths{"top/Target Left", "top/target a", "top/target kept", "top/target kept"}));
  });
}

TYPED_TEST(FileSearch, FindsNothingInAPathWithASlashAtItsEndUnlessItIsRecursive) {
  TypeParam::play([](TypeParam& world) {
    world.file("target/target file");
    EXPECT_EQ(found(world, "target", world.path("target/"), kByPart, kFlat), Paths{});
    EXPECT_EQ(found(world, "target", world.path("target/"), kByPart, kRecursive),
              Paths{"target/target file"});
    // By words, the folder itself is found, before and after.
    EXPECT_EQ(std::ranges::count_if(
                  findFile(world.files(), "target", world.path("target/"), kByWords, kRecursive),
                  [](const std::string& path) { return !path.ends_with("file"); }),
              2);
  });
}

TYPED_TEST(FileSearch, TakesTheNameAsPartOfAnExpression) {
  TypeParam::play([](TypeParam& world) {
    for (const char* name : {"a.c 2", "abc", "a.c", "a(b", "a(b 2", "a(b3"})
      world.file("top/" + std::string(name));
    EXPECT_EQ(found(world, "a.c", world.path("top"), kByPart, kFlat), Paths{"top/a.c"});
    // That makes no expression, so numbered copies match, too.
    EXPECT_EQ(found(world, "A(B", world.path("top"), kByPart, kFlat),
              (Paths{"top/a(b", "top/a(b 2", "top/a(b3"}));
  });
}

TYPED_TEST(FileSearch, FindsNamesOfAllScriptsWithoutRegardToCase) {
  TypeParam::play([](TypeParam& world) {
    for (const char* name : {"\u00c9t\u00e9.txt", "e\u0301te\u0301", "\u212aelvin", "\xFF target"})
      world.file("top/" + std::string(name));
    EXPECT_EQ(found(world, "\u00e9T\u00c9", world.path("top"), kByPart, kFlat),
              (Paths{"top/e\u0301te\u0301", "top/\u00c9t\u00e9.txt"}));
    EXPECT_EQ(found(world, "kelvin", world.path("top"), kByWords, kFlat), Paths{"top/\u212aelvin"});
    EXPECT_EQ(found(world, "TARGET", world.path("top"), kByWords, kFlat), Paths{"top/\xFF target"});
  });
}

TYPED_TEST(FileSearch, DoesNotFollowLinks) {
  TypeParam::play([](TypeParam& world) {
    world.file("elsewhere/target file");
    world.folder("top");
    world.link("top/target link", "../elsewhere");
    EXPECT_EQ(found(world, "target", world.path("top"), kByPart, kRecursive),
              Paths{"top/target link"});
    world.link("link", "elsewhere");
    EXPECT_EQ(found(world, "target", world.path("link"), kByPart, kRecursive), Paths{});
  });
}

}  // namespace
}  // namespace vornix::contract
