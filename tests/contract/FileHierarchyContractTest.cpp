#include "platform/files/FileHierarchy.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/Walks.h"

namespace vornix::contract {
namespace {

using enum HierarchyKind;
using namespace std::string_view_literals;

constexpr HierarchyOptions kAllKinds{};
constexpr HierarchyOptions kNoStatus{.noStatus = true};
constexpr HierarchyOptions kOneDevice{.noStatus = true, .noCrossing = true};

template <typename World>
class FileHierarchyContract : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(FileHierarchyContract, Worlds);

TYPED_TEST(FileHierarchyContract, TellsTheItemThatItBeginsWithWhateverThatIs) {
  struct Row {
    std::string_view path;
    HierarchyKind kind;
    int error;
    std::string_view name;
  };
  const std::string tooLong(256, 'x');
  const Row rows[] = {{"file", file, 0, "file"},
                      {"./file", file, 0, "file"},
                      {"file/", noStatus, ENOTDIR, ""},
                      {"file/inner", noStatus, ENOTDIR, "inner"},
                      {"link-to-file", symbolicLink, 0, "link-to-file"},
                      {"link-to-folder", symbolicLink, 0, "link-to-folder"},
                      {"link-to-folder/", folder, 0, ""},
                      {"link-to-folder/.", folder, 0, "."},
                      {"link-to-nothing", symbolicLink, 0, "link-to-nothing"},
                      {"link-to-nothing/", noStatus, ENOENT, ""},
                      {"link-to-itself/", noStatus, ELOOP, ""},
                      {"missing", noStatus, ENOENT, "missing"},
                      {"folder", folder, 0, "folder"},
                      {"folder/", folder, 0, ""},
                      {"folder//", folder, 0, ""},
                      {".", folder, 0, "."},
                      {"..", folder, 0, ".."},
                      {"/", folder, 0, "/"},
                      {"//", folder, 0, ""},
                      {tooLong, noStatus, ENAMETOOLONG, tooLong},
                      {"fol\0der"sv, noStatus, ENOENT, "fol\0der"sv}};
  TypeParam::play([&rows](TypeParam& world) {
    world.file("file");
    world.folder("folder");
    world.link("link-to-file", "file");
    world.link("link-to-folder", "folder");
    world.link("link-to-nothing", "missing");
    world.link("link-to-itself", "link-to-itself");
    world.enter("");
    for (const Row& row : rows) {
      for (const HierarchyOptions options : {kAllKinds, kNoStatus, kOneDevice}) {
        const auto hierarchy = world.files().hierarchyAtPath(row.path, options);
        ASSERT_NE(hierarchy, nullptr) << row.path;
        const HierarchyEntry* entry = hierarchy->read();
        ASSERT_NE(entry, nullptr) << row.path;
        EXPECT_EQ(entry->kind, row.kind) << row.path;
        EXPECT_EQ(entry->error, row.error) << row.path;
        EXPECT_EQ(entry->path, row.path);
        EXPECT_EQ(entry->name, row.name) << row.path;
        EXPECT_EQ(entry->level, 0U) << row.path;
        if (row.kind != folder) {
          EXPECT_EQ(hierarchy->read(), nullptr) << row.path;
        }
      }
    }
  });
}

TYPED_TEST(FileHierarchyContract, CannotBeginWithTheEmptyPath) {
  TypeParam::play(
      [](TypeParam& world) { EXPECT_EQ(world.files().hierarchyAtPath("", kNoStatus), nullptr); });
}

TYPED_TEST(FileHierarchyContract, TellsEveryFolderTwiceWithAllThatItHoldsBetween) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/file");
    world.file("top/.hidden");
    world.file("top/folder/inner");
    world.folder("top/folder/empty");
    world.link("top/link", "folder");
    world.link("top/folder/up", "..");
    world.enter("");
    Steps expected{{folder, "top", 0},
                   {folder, "top/folder", 1},
                   {folder, "top/folder/empty", 2},
                   {folderEnd, "top", 0},
                   {folderEnd, "top/folder", 1},
                   {folderEnd, "top/folder/empty", 2},
                   {file, "top/.hidden", 1},
                   {file, "top/file", 1},
                   {file, "top/folder/inner", 2},
                   {symbolicLink, "top/folder/up", 2},
                   {symbolicLink, "top/link", 1}};
    EXPECT_EQ(sortedWalk(world.files(), "top", kAllKinds), expected);
    for (Step& step : expected) {
      if (step.kind == file || step.kind == symbolicLink) step.kind = notAsked;
    }
    EXPECT_EQ(sortedWalk(world.files(), "top", kNoStatus), sorted(expected));
  });
}

TYPED_TEST(FileHierarchyContract, JoinsNamesWithOneSlash) {
  struct Row {
    std::string_view start;
    std::string inner;
  };
  const Row rows[] = {{"top", "top/inner"},
                      {"top/", "top/inner"},
                      {"top//", "top//inner"},
                      {"./top", "./top/inner"},
                      {"top/.", "top/./inner"}};
  TypeParam::play([&rows](TypeParam& world) {
    world.file("top/inner");
    world.enter("");
    for (const Row& row : rows) {
      const std::string start(row.start);
      const Steps expected{{folder, start, 0}, {folderEnd, start, 0}, {notAsked, row.inner, 1}};
      EXPECT_EQ(sortedWalk(world.files(), start, kNoStatus), expected);
    }
  });
}

TYPED_TEST(FileHierarchyContract, DoesNotEnterFoldersThatAreSkipped) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/skipped/inner");
    world.file("top/file");
    world.file("top/walked/inner");
    world.enter("");
    const Steps expected{
        {folder, "top", 0},        {folder, "top/skipped", 1},       {folder, "top/walked", 1},
        {folderEnd, "top", 0},     {folderEnd, "top/skipped", 1},    {folderEnd, "top/walked", 1},
        {notAsked, "top/file", 1}, {notAsked, "top/walked/inner", 2}};
    // To skip what is no folder means nothing.
    EXPECT_EQ(sortedWalk(world.files(), "top", kNoStatus, {"skipped", "file"}), expected);
    EXPECT_EQ(sortedWalk(world.files(), "top", kNoStatus, {"top"}),
              (Steps{{folder, "top", 0}, {folderEnd, "top", 0}}));
  });
}

TYPED_TEST(FileHierarchyContract, TellsThatAFolderCannotBeReadInPlaceOfItsEnd) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/closed/inner");
    world.file("top/open/inner");
    world.enter("");
    world.forbidReading("top/closed");
    Steps expected{{folder, "top", 0},
                   {folder, "top/closed", 1},
                   {folder, "top/open", 1},
                   {unreadableFolder, "top/closed", 1},
                   {folderEnd, "top", 0},
                   {folderEnd, "top/open", 1},
                   {notAsked, "top/open/inner", 2}};
    EXPECT_EQ(sortedWalk(world.files(), "top", kNoStatus), expected);
    // It is not even tried.
    expected = {{folder, "top", 0},
                {folder, "top/closed", 1},
                {folder, "top/open", 1},
                {folderEnd, "top", 0},
                {folderEnd, "top/closed", 1},
                {folderEnd, "top/open", 1},
                {notAsked, "top/open/inner", 2}};
    EXPECT_EQ(sortedWalk(world.files(), "top", kNoStatus, {"closed"}), expected);
    const auto hierarchy = world.files().hierarchyAtPath("top/closed", kNoStatus);
    EXPECT_EQ(hierarchy->read()->kind, folder);
    const HierarchyEntry* entry = hierarchy->read();
    EXPECT_EQ(entry->kind, unreadableFolder);
    EXPECT_EQ(entry->error, EACCES);
    EXPECT_EQ(entry->name, "closed");
    EXPECT_EQ(hierarchy->read(), nullptr);
  });
}

TYPED_TEST(FileHierarchyContract, StaysOnTheDeviceThatItBeganWithWhereThatIsWanted) {
  const auto outcome = TypeParam::play([](TypeParam& world) {
    world.folder("top/mount");
    world.folder("top/bound");
    world.file("top/here/inner");
    world.mount("top/mount");
    world.bind("top/here", "top/bound");
    world.file("top/mount/inner");
    world.enter("");
    Steps expected{{folder, "top", 0},
                   {folder, "top/bound", 1},
                   {folder, "top/here", 1},
                   {folder, "top/mount", 1},
                   {folderEnd, "top", 0},
                   {folderEnd, "top/bound", 1},
                   {folderEnd, "top/here", 1},
                   {folderEnd, "top/mount", 1},
                   {notAsked, "top/bound/inner", 2},
                   {notAsked, "top/here/inner", 2}};
    EXPECT_EQ(sortedWalk(world.files(), "top", kOneDevice), expected);
    expected.push_back({notAsked, "top/mount/inner", 2});
    EXPECT_EQ(sortedWalk(world.files(), "top", kNoStatus), expected);
    const Steps mounted{
        {folder, "top/mount", 0}, {folderEnd, "top/mount", 0}, {notAsked, "top/mount/inner", 1}};
    EXPECT_EQ(sortedWalk(world.files(), "top/mount", kOneDevice), mounted);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TYPED_TEST(FileHierarchyContract, TellsNamesOfWhateverBytes) {
  const std::vector<std::string> names{
      " ",      "...", "..a", "a\nb", "\xFF\xFE", "\xED\xA0\x80", std::string(255, 'x'),
      "\u200b", "-",   "a\\b"};
  TypeParam::play([&names](TypeParam& world) {
    Steps expected{{folder, "top", 0}, {folderEnd, "top", 0}};
    for (const std::string& name : names) {
      world.file("top/" + name + "/" + name);
      expected.push_back({folder, "top/" + name, 1});
      expected.push_back({folderEnd, "top/" + name, 1});
      expected.push_back({file, "top/" + name + "/" + name, 2});
    }
    world.enter("");
    EXPECT_EQ(sortedWalk(world.files(), "top", kAllKinds), sorted(expected));
  });
}

TYPED_TEST(FileHierarchyContract, ReadsNothingAfterItWasClosed) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/inner");
    world.enter("");
    for (int read = 0; read < 4; ++read) {
      const auto hierarchy = world.files().hierarchyAtPath("top", kNoStatus);
      for (int each = 0; each < read; ++each) EXPECT_NE(hierarchy->read(), nullptr);
      hierarchy->close();
      EXPECT_EQ(hierarchy->read(), nullptr) << read;
      hierarchy->skip();
      hierarchy->close();
      EXPECT_EQ(hierarchy->read(), nullptr) << read;
    }
  });
}

}  // namespace
}  // namespace vornix::contract
