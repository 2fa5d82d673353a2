#include "platform/files/NSFileManager.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

enum class Found { nothing, item, folder };

Found find(const NSFileManager& files, std::string_view path) {
  bool isFolder = true;
  const bool exists = files.fileExistsAtPath(path, &isFolder);
  EXPECT_EQ(files.fileExistsAtPath(path), exists) << path;
  EXPECT_TRUE(exists || !isFolder) << path;
  if (!exists) return Found::nothing;
  return isFolder ? Found::folder : Found::item;
}

template <typename World>
class NSFileManagerContract : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld>;
TYPED_TEST_SUITE(NSFileManagerContract, Worlds);

TYPED_TEST(NSFileManagerContract, TellsFilesFoldersAndWhatIsMissingApart) {
  struct Row {
    std::string_view path;
    Found found;
  };
  constexpr Row rows[] = {{"file", Found::item},
                          {"folder", Found::folder},
                          {"folder/", Found::folder},
                          {"folder//", Found::folder},
                          {"./folder/.", Found::folder},
                          {"folder/..", Found::folder},
                          {"folder/../file", Found::item},
                          {"folder/inner", Found::item},
                          {"folder/missing", Found::nothing},
                          {"missing", Found::nothing},
                          {"missing/../file", Found::nothing},
                          {"file/", Found::nothing},
                          {"file/.", Found::nothing},
                          {"file/..", Found::nothing},
                          {"file/inner", Found::nothing},
                          {"link-to-file", Found::item},
                          {"link-to-file/", Found::nothing},
                          {"link-to-folder", Found::folder},
                          {"link-to-folder/", Found::folder},
                          {"link-to-folder/inner", Found::item},
                          {"link-to-folder/../file", Found::item},
                          {"link-to-link", Found::folder},
                          {"link-to-nothing", Found::nothing},
                          {"link-to-itself", Found::nothing},
                          {"a b\n\xC3\xA9", Found::item},
                          {"\xFF\xFE", Found::folder},
                          {"\xED\xA0\x80", Found::item},
                          {"\u200b", Found::item},
                          {"cafe\u0301", Found::item},
                          {"caf\u00e9", Found::nothing},
                          {".", Found::folder},
                          {"..", Found::folder},
                          {"/", Found::folder},
                          {"//", Found::folder},
                          {"FILE", Found::nothing},
                          {"", Found::nothing},
                          {std::string_view("\0", 1), Found::nothing},
                          {std::string_view("file\0", 5), Found::nothing},
                          {std::string_view("file\0x", 6), Found::nothing}};
  TypeParam::play([&rows](TypeParam& world) {
    world.file("file");
    world.file("folder/inner");
    world.link("link-to-file", "file");
    world.link("link-to-folder", world.path("folder"));
    world.link("link-to-link", "link-to-folder");
    world.link("link-to-nothing", "missing");
    world.link("link-to-itself", "link-to-itself");
    for (const char* name : {"a b\n\xC3\xA9", "\xED\xA0\x80", "\u200b", "cafe\u0301"})
      world.file(name);
    world.folder("\xFF\xFE");
    world.enter("");
    for (const Row& row : rows) {
      EXPECT_EQ(find(world.files(), row.path), row.found) << row.path;
      const bool isRelative = !row.path.empty() && !row.path.starts_with('/');
      const std::string whole = world.path(std::string(row.path));
      if (isRelative) {
        EXPECT_EQ(find(world.files(), whole), row.found) << whole;
      }
    }
  });
}

TYPED_TEST(NSFileManagerContract, StartsRelativePathsAtTheCurrentFolder) {
  TypeParam::play([](TypeParam& world) {
    world.file("one/file");
    world.folder("two");
    world.enter("one");
    EXPECT_EQ(find(world.files(), "file"), Found::item);
    world.enter("two");
    EXPECT_EQ(find(world.files(), "file"), Found::nothing);
    EXPECT_EQ(find(world.files(), "../one/file"), Found::item);
  });
}

TYPED_TEST(NSFileManagerContract, FindsNothingUnderNamesThatAreTooLong) {
  TypeParam::play([](TypeParam& world) {
    world.enter("");
    EXPECT_EQ(find(world.files(), std::string(256, 'x')), Found::nothing);
    EXPECT_EQ(find(world.files(), "/" + std::string(10'000'000, 'x')), Found::nothing);
  });
}

}  // namespace
}  // namespace vornix::contract
