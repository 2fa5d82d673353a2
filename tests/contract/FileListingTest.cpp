#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "fs/NSFileManager+Additions.h"
#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

template <typename World>
class FileListing : public testing::Test {};

using Worlds = testing::Types<LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(FileListing, Worlds);

std::vector<std::string> sortedPaths(const std::vector<NSURL>& urls) {
  std::vector<std::string> paths;
  for (const NSURL& url : urls) paths.push_back(url.path());
  std::ranges::sort(paths);
  return paths;
}

TYPED_TEST(FileListing, ListsFullPathsOfDirectChildrenHiddenOnesIncluded) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/.hidden");
    world.file("top/\xFF\n");
    world.file("top/folder/inner");
    world.link("top/link", "missing");
    auto paths = directoryContentsWithFullPathesAtPath(world.files(), world.path("top"));
    std::ranges::sort(paths);
    EXPECT_EQ(paths, (std::vector{world.path("top/.hidden"), world.path("top/folder"),
                                  world.path("top/link"), world.path("top/\xFF\n")}));
    EXPECT_TRUE(directoryContentsWithFullPathesAtPath(world.files(), world.path("none")).empty());
  });
}

TYPED_TEST(FileListing, ListsGrandchildrenInVisibleFoldersHiddenOnesIncluded) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/inner");
    world.file("top/folder/.hidden");
    world.file("top/folder/deeper/lost");
    world.file("top/.hidden/inner");
    world.file("top/file");
    const NSURL url = NSURL::fileURLWithPath(world.path("top"));
    EXPECT_EQ(sortedPaths(contentsOfDirectoryAtURL(world.files(), url, 1)),
              (std::vector{world.path("top/folder/.hidden"), world.path("top/folder/deeper"),
                           world.path("top/folder/inner")}));
    EXPECT_EQ(sortedPaths(contentsOfDirectoryAtURL(world.files(), url, 2)),
              std::vector{world.path("top/folder/deeper/lost")});
    EXPECT_TRUE(contentsOfDirectoryAtURL(world.files(), url, 0).empty());
    EXPECT_TRUE(contentsOfDirectoryAtURL(world.files(), url, 3).empty());
  });
}

TYPED_TEST(FileListing, ListsOneLevelOrTwoByRelativeNames) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/inner");
    world.file("top/folder/deeper/lost");
    world.file("top/.hidden");
    world.link("top/link", "folder");
    const std::string top = world.path("top");
    EXPECT_EQ(getContentOfPath(world.files(), top, false),
              (std::set<std::string>{".hidden", "folder", "link"}));
    EXPECT_EQ(getContentOfPath(world.files(), top, true),
              (std::set<std::string>{".hidden", "folder", "folder/deeper", "folder/inner", "link",
                                     "link/deeper", "link/inner"}));
    EXPECT_TRUE(getContentOfPath(world.files(), world.path("none"), true).empty());
  });
}

TYPED_TEST(FileListing, AnswersAFreePathUnchanged) {
  TypeParam::play([](TypeParam& world) {
    EXPECT_EQ(uniquePathForPath(world.files(), world.path("a.txt")), world.path("a.txt"));
    // A link that leads nowhere does not count.
    world.link("link", "missing");
    EXPECT_EQ(uniquePathForPath(world.files(), world.path("link")), world.path("link"));
    EXPECT_EQ(uniquePathForPath(world.files(), ""), "");
  });
}

TYPED_TEST(FileListing, NumbersATakenPathFromOneOn) {
  TypeParam::play([](TypeParam& world) {
    for (const char* name : {"a.txt", "a 1.txt", "Folder/in", "b 1", "c.tar.gz", ".rc", "d%@ 7.e"})
      world.file(name);
    struct Row {
      const char* taken;
      const char* free;
    };
    constexpr Row rows[] = {{"a.txt", "a 2.txt"},   {"a 1.txt", "a 1 1.txt"},
                            {"Folder", "Folder 1"}, {"Folder/", "Folder 1"},
                            {"b 1", "b 1 1"},       {"c.tar.gz", "c.tar 1.gz"},
                            {".rc", ".rc 1"},       {"d%@ 7.e", "d%@ 7 1.e"}};
    for (const Row& row : rows)
      EXPECT_EQ(uniquePathForPath(world.files(), world.path(row.taken)), world.path(row.free));
    world.enter("");
    EXPECT_EQ(uniquePathForPath(world.files(), "a.txt"), "a 2.txt");
  });
}

TYPED_TEST(FileListing, SeesNothingInAnEmptyFolder) {
  TypeParam::play([](TypeParam& world) {
    world.folder("empty");
    world.file("file");
    for (const bool ignoresLinks : {false, true}) {
      for (const char* name : {"empty", "file", "missing"})
        EXPECT_FALSE(containsAnyFileAtPath(world.files(), world.path(name), ignoresLinks)) << name;
      EXPECT_FALSE(containsAnyFileAtPath(world.files(), "", ignoresLinks));
    }
  });
}

TYPED_TEST(FileListing, CountsAnEmptySubfolderAsContent) {
  TypeParam::play([](TypeParam& world) {
    world.folder("top/empty");
    EXPECT_TRUE(containsAnyFileAtPath(world.files(), world.path("top"), false));
    EXPECT_TRUE(containsAnyFileAtPath(world.files(), world.path("top"), true));
  });
}

TYPED_TEST(FileListing, CountsLinksAsContentOnlyWhereTheyAreNotIgnored) {
  TypeParam::play([](TypeParam& world) {
    world.folder("elsewhere/inner");
    world.link("top/nowhere", "missing");
    world.link("top/.folder", "../elsewhere");
    EXPECT_TRUE(containsAnyFileAtPath(world.files(), world.path("top"), false));
    EXPECT_FALSE(containsAnyFileAtPath(world.files(), world.path("top"), true));
    world.file("top/.file");
    EXPECT_TRUE(containsAnyFileAtPath(world.files(), world.path("top"), true));
  });
}

TYPED_TEST(FileListing, CountsAFolderOfNothingButLinksAsContent) {
  TypeParam::play([](TypeParam& world) {
    world.link("top/folder/link", "missing");
    EXPECT_TRUE(containsAnyFileAtPath(world.files(), world.path("top"), true));
    EXPECT_FALSE(containsAnyFileAtPath(world.files(), world.path("top/folder"), true));
  });
}

TYPED_TEST(FileListing, CountsNothingThatCannotBeLookedAtAsContent) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  TypeParam::play([](TypeParam& world) {
    world.file("top/file");
    world.folder("top/folder");
    world.folder("unused");
    world.forbidChangesIn("unused");
    EXPECT_TRUE(containsAnyFileAtPath(world.files(), world.path("top"), true));
    ASSERT_EQ(chmod(world.path("top").c_str(), 0444), 0);
    for (const bool ignoresLinks : {true, false})
      EXPECT_FALSE(containsAnyFileAtPath(world.files(), world.path("top"), ignoresLinks));
  });
}

TYPED_TEST(FileListing, SearchesFullPathsForAPatternDownToOneBelowTheLevel) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/one/two/three/target-3");
    world.file("top/one/.target-1");
    const auto finds = [&world](std::string_view pattern, std::uint64_t level) {
      const auto regex = NSRegularExpression::regularExpressionWithPattern(
          pattern, NSRegularExpressionOptions::none);
      return fileExistsAtPath(world.files(), world.path("top"), regex.get(), level);
    };
    EXPECT_TRUE(finds("one$", 0));
    EXPECT_FALSE(finds("target-1", 0));
    EXPECT_TRUE(finds("target-1", 1));
    EXPECT_FALSE(finds("target-3", 2));
    EXPECT_TRUE(finds("target-3", 3));
    // The folder's own path is a part of what is searched.
    EXPECT_TRUE(finds("top/one", 0));
    EXPECT_FALSE(finds("top$", 9));
    const auto regex =
        NSRegularExpression::regularExpressionWithPattern("", NSRegularExpressionOptions::none);
    EXPECT_FALSE(fileExistsAtPath(world.files(), world.path("top"), regex.get(), 9));
    EXPECT_FALSE(fileExistsAtPath(world.files(), std::nullopt, nullptr, 9));
  });
}

}  // namespace
}  // namespace vornix::contract
