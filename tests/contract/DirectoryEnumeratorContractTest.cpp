#include "platform/files/NSDirectoryEnumerator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

using namespace std::string_view_literals;

using Item = std::pair<std::string, std::size_t>;
using Items = std::vector<Item>;

template <typename World>
class DirectoryEnumerator : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(DirectoryEnumerator, Worlds);

// Paths with their levels, sorted.
Items itemsOf(NSDirectoryEnumerator enumerator, std::string_view skipped = {}) {
  Items items;
  EXPECT_EQ(enumerator.level(), 0U);
  while (const auto item = enumerator.nextObject()) {
    items.emplace_back(*item, enumerator.level());
    if (*item == skipped) enumerator.skipDescendants();
  }
  enumerator.skipDescendants();
  EXPECT_EQ(enumerator.nextObject(), std::nullopt);
  std::ranges::sort(items);
  return items;
}

TYPED_TEST(DirectoryEnumerator, TellsRelativePathsAndLevelsOfAllThatIsBelow) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/.hidden/inner");
    world.file("top/.file");
    world.link("top/link", "folder");
    world.link("start", "top");
    world.enter("");
    const Items expected{{".file", 1},
                         {"folder", 1},
                         {"folder/.hidden", 2},
                         {"folder/.hidden/inner", 3},
                         {"link", 1}};
    for (const char* start : {"top", "top/", "top//", "start", "start/"})
      EXPECT_EQ(itemsOf(world.files().enumeratorAtPath(start)), expected) << start;
    EXPECT_EQ(itemsOf(world.files().enumeratorAtPath(world.path("top"))), expected);
  });
}

TYPED_TEST(DirectoryEnumerator, TellsAFolderBeforeWhatItHolds) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/a/b/c");
    auto enumerator = world.files().enumeratorAtPath(world.path("top"));
    for (const char* item : {"a", "a/b", "a/b/c"}) EXPECT_EQ(enumerator.nextObject(), item);
    EXPECT_EQ(enumerator.nextObject(), std::nullopt);
  });
}

TYPED_TEST(DirectoryEnumerator, PassesOverWhatIsBelowAFolderThatIsSkipped) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/inner");
    world.file("top/other/inner");
    world.file("top/zfile");
    const auto items = [&world](std::string_view skipped) {
      return itemsOf(world.files().enumeratorAtPath(world.path("top")), skipped);
    };
    EXPECT_EQ(items("folder"),
              (Items{{"folder", 1}, {"other", 1}, {"other/inner", 2}, {"zfile", 1}}));
    // Nothing happens after what is no folder.
    EXPECT_EQ(items("zfile").size(), 5U);
    EXPECT_EQ(items("other/inner").size(), 5U);
  });
}

TYPED_TEST(DirectoryEnumerator, TellsNothingOfWhatIsNoFolder) {
  TypeParam::play([](TypeParam& world) {
    world.file("file");
    world.folder("empty");
    world.link("nowhere", "missing");
    world.link("to-file", "file");
    for (const char* name : {"file", "empty", "nowhere", "to-file", "missing", "file/x"})
      EXPECT_EQ(itemsOf(world.files().enumeratorAtPath(world.path(name))), Items{}) << name;
    EXPECT_EQ(itemsOf(world.files().enumeratorAtPath("")), Items{});
    EXPECT_EQ(itemsOf(world.files().enumeratorAtPath("/\0"sv)), Items{});
    EXPECT_EQ(itemsOf(world.files().enumeratorAtURL(*NSURL::URLWithString("http://x/"))), Items{});
  });
}

TYPED_TEST(DirectoryEnumerator, PassesOverAFolderThatCannotBeRead) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/closed/inner");
    world.file("top/open/inner");
    world.forbidReading("top/closed");
    EXPECT_EQ(itemsOf(world.files().enumeratorAtPath(world.path("top"))),
              (Items{{"closed", 1}, {"open", 1}, {"open/inner", 2}}));
  });
}

TYPED_TEST(DirectoryEnumerator, LeavesOutHiddenItemsWithAllBelowThemOnDemand) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/.hidden/inner");
    world.file("top/folder/.file");
    world.file("top/folder/...");
    world.file("top/folder/file.");
    const NSURL url = NSURL::fileURLWithPath(world.path("top"), true);
    EXPECT_EQ(itemsOf(world.files().enumeratorAtURL(url, NSDirectoryEnumerationSkipsHiddenFiles)),
              (Items{{"folder", 1}, {"folder/file.", 2}}));
    EXPECT_EQ(itemsOf(world.files().enumeratorAtURL(url)).size(), 6U);
  });
}

TYPED_TEST(DirectoryEnumerator, TellsUrlsThatKnowFoldersFromOtherItems) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/a b");
    world.link("top/folder/link", ".");
    auto enumerator =
        world.files().enumeratorAtURL(NSURL::fileURLWithPath(world.path("top"), true));
    EXPECT_EQ(enumerator.nextURL(), NSURL::fileURLWithPath(world.path("top/folder"), true));
    std::vector<std::string> urls{enumerator.nextURL()->absoluteString(),
                                  enumerator.nextURL()->absoluteString()};
    std::ranges::sort(urls);
    const std::string start = "file://" + world.path("top/folder");
    EXPECT_EQ(urls, (std::vector{start + "/a%20b", start + "/link"}));
    EXPECT_EQ(enumerator.nextURL(), std::nullopt);
  });
}

TYPED_TEST(DirectoryEnumerator, GoesOnWhileItsFolderIsEmptied) {
  TypeParam::play([](TypeParam& world) {
    for (const char* name : {"top/a/x/y", "top/b/x", "top/c"}) world.file(name);
    auto enumerator = world.files().enumeratorAtPath(world.path("top"));
    EXPECT_NE(enumerator.nextObject(), std::nullopt);
    EXPECT_TRUE(world.files().removeItemAtPath(world.path("top")));
    int more = 0;
    while (enumerator.nextObject()) ++more;
    EXPECT_LE(more, 5);
  });
}

TYPED_TEST(DirectoryEnumerator, ListsNamesAndUrlsOfDirectChildren) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/inner");
    world.file("top/.file\xFF");
    world.link("link", "top");
    for (const char* name : {"top", "top/", "link"}) {
      auto names = world.files().contentsOfDirectoryAtPath(world.path(name));
      ASSERT_TRUE(names) << name;
      std::ranges::sort(*names);
      EXPECT_EQ(*names, (std::vector<std::string>{".file\xFF", "folder"}));
    }
    const NSURL url = NSURL::fileURLWithPath(world.path("top"), true);
    auto urls = world.files().contentsOfDirectoryAtURL(url);
    ASSERT_TRUE(urls);
    std::ranges::sort(*urls, {}, &NSURL::path);
    EXPECT_EQ(*urls, (std::vector{NSURL::fileURLWithPath(world.path("top/.file\xFF"), false),
                                  NSURL::fileURLWithPath(world.path("top/folder"), true)}));
    urls = world.files().contentsOfDirectoryAtURL(url, NSDirectoryEnumerationSkipsHiddenFiles);
    ASSERT_TRUE(urls);
    EXPECT_EQ(*urls, std::vector{NSURL::fileURLWithPath(world.path("top/folder"), true)});
  });
}

TYPED_TEST(DirectoryEnumerator, SaysWhyAFolderCannotBeListed) {
  struct Row {
    std::string_view name;
    std::int64_t code;
    int number;
  };
  const std::string tooLong(256, 'x');
  const Row rows[] = {{"missing", 260, ENOENT}, {"nowhere", 260, ENOENT},
                      {"file", 256, ENOTDIR},   {"file/x", 256, ENOTDIR},
                      {"loop", 256, ELOOP},     {tooLong, 258, ENAMETOOLONG},
                      {"closed", 257, EACCES},  {"a\0b"sv, 260, ENOENT}};
  TypeParam::play([&rows](TypeParam& world) {
    world.file("file");
    world.folder("closed");
    world.link("nowhere", "missing");
    world.link("loop", "loop");
    world.forbidReading("closed");
    for (const Row& row : rows) {
      const std::string path = world.path(std::string(row.name));
      std::optional<NSError> error;
      EXPECT_EQ(world.files().contentsOfDirectoryAtPath(path, &error), std::nullopt) << path;
      ASSERT_TRUE(error) << path;
      EXPECT_EQ(error->domain, NSCocoaErrorDomain);
      EXPECT_EQ(error->code, row.code) << path;
      EXPECT_EQ(error->underlyingErrno, row.number) << path;
      EXPECT_EQ(error->filePath, path);
      error.reset();
      if (row.name.find('\0') != std::string_view::npos) continue;
      const NSURL url = NSURL::fileURLWithPath(path, true);
      EXPECT_EQ(world.files().contentsOfDirectoryAtURL(url, 0, &error), std::nullopt) << path;
      ASSERT_TRUE(error) << path;
      EXPECT_EQ(error->code, row.code) << path;
    }
    std::optional<NSError> error;
    EXPECT_EQ(world.files().contentsOfDirectoryAtPath("", &error), std::nullopt);
    EXPECT_EQ(error->code, 260);
    const NSURL page = *NSURL::URLWithString("http://example.com/");
    EXPECT_EQ(world.files().contentsOfDirectoryAtURL(page, 0, &error), std::nullopt);
    EXPECT_EQ(error->code, 262);
    EXPECT_EQ(world.files().contentsOfDirectoryAtURL(page), std::nullopt);
  });
}

TYPED_TEST(DirectoryEnumerator, LeavesTheErrorAloneWhereListingSucceeds) {
  TypeParam::play([](TypeParam& world) {
    world.folder("empty");
    std::optional<NSError> error = NSError{.code = 7};
    const auto names = world.files().contentsOfDirectoryAtPath(world.path("empty"), &error);
    EXPECT_EQ(names, std::vector<std::string>{});
    EXPECT_EQ(error->code, 7);
  });
}

}  // namespace
}  // namespace vornix::contract
