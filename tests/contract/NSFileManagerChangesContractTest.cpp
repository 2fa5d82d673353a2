#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/files/NSFileManager.h"
#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

constexpr std::int64_t kSuccess = 0;

template <typename World>
class NSFileManagerChanges : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld>;
TYPED_TEST_SUITE(NSFileManagerChanges, Worlds);

// The code of the error that the operation sets, with what belongs to any such error checked.
std::int64_t codeOf(std::string_view path,
                    const std::function<bool(std::optional<NSError>*)>& operation) {
  const NSError untouched{.domain = "untouched"};
  std::optional<NSError> error = untouched;
  if (operation(&error)) {
    EXPECT_EQ(error, untouched) << path;
    return kSuccess;
  }
  if (!error || error == untouched) {
    ADD_FAILURE() << path << " failed without an error";
    return -1;
  }
  EXPECT_EQ(error->domain, NSCocoaErrorDomain) << path;
  EXPECT_EQ(error->filePath, path);
  EXPECT_NE(error->underlyingErrno, 0) << path;
  EXPECT_NE(error->localizedDescription, "") << path;
  return error->code;
}

struct Row {
  std::string_view path;
  std::int64_t code;
};

void fill(auto& world) {
  world.file("file");
  world.file("folder/inner");
  world.file("a b\n%/\xFF\xFE/file");
  world.link("link-to-file", "file");
  world.link("link-to-folder", "folder");
  world.link("link-to-nothing", "missing");
  world.link("link-to-itself", "link-to-itself");
  world.enter("");
}

const std::string kTooLong(256, 'x');
const std::string kTooLongPath = "/" + std::string(1'000'000, 'x');

TYPED_TEST(NSFileManagerChanges, MakesAFolderWhereItsParentExists) {
  const Row rows[] = {{"new", kSuccess},
                      {"new", 516},
                      {"new/", 516},
                      {"with-slash/", kSuccess},
                      {"folder", 516},
                      {"file", 516},
                      {"link-to-folder", 516},
                      {"link-to-nothing", 516},
                      {"link-to-itself", 516},
                      {"missing/x", 4},
                      {"file/x", 512},
                      {"link-to-itself/x", 512},
                      {"link-to-folder/x", kSuccess},
                      {"folder/x", 516},
                      {"folder/\xED\xA0\x80", kSuccess},
                      {"folder/\u05d0\u200b", kSuccess},
                      {"folder/cafe\u0301", kSuccess},
                      {"folder/caf\u00e9", kSuccess},
                      {".", 516},
                      {"/", 516},
                      {"", 4},
                      {std::string_view("new2\0", 5), 4},
                      {kTooLong, 514},
                      {kTooLongPath, 514}};
  TypeParam::play([&rows](TypeParam& world) {
    fill(world);
    for (const Row& row : rows) {
      EXPECT_EQ(codeOf(row.path,
                       [&](auto* error) {
                         return world.files().createDirectoryAtPath(row.path, false, error);
                       }),
                row.code)
          << row.path;
    }
    EXPECT_TRUE(world.files().fileExistsAtPath("folder/x"));
  });
}

TYPED_TEST(NSFileManagerChanges, MakesTheFoldersAboveOnDemand) {
  const Row rows[] = {{"a/b/c/d", kSuccess},
                      {"a/b/c/d", kSuccess},
                      {"a/b/x/", kSuccess},
                      {"a//y/./z", kSuccess},
                      {"folder", kSuccess},
                      {"link-to-folder", kSuccess},
                      {"link-to-folder/p/q", kSuccess},
                      {"file", 516},
                      {"link-to-file", 516},
                      {"link-to-nothing", 516},
                      {"file/x", 512},
                      {"file/x/y/z", 512},
                      {"link-to-nothing/x", 4},
                      {"link-to-itself/x", 512},
                      {".", kSuccess},
                      {"/", kSuccess},
                      {"", 4},
                      {std::string_view("r/\0", 3), 4},
                      {kTooLong, 514},
                      {kTooLongPath, 514},
                      {"s/\xFF\xFE/%\n ", kSuccess}};
  TypeParam::play([&rows](TypeParam& world) {
    fill(world);
    for (const Row& row : rows) {
      EXPECT_EQ(codeOf(row.path,
                       [&](auto* error) {
                         return world.files().createDirectoryAtPath(row.path, true, error);
                       }),
                row.code)
          << row.path;
    }
    for (const std::string_view made :
         {"a/b/c/d", "a/b/x", "a/y/z", "folder/p/q", "s/\xFF\xFE/%\n "}) {
      bool isFolder = false;
      EXPECT_TRUE(world.files().fileExistsAtPath(made, &isFolder) && isFolder) << made;
    }
  });
}

TYPED_TEST(NSFileManagerChanges, GivesANewFolderThePermissionsAskedFor) {
  TypeParam::play([](TypeParam& world) {
    world.enter("");
    EXPECT_TRUE(world.files().createDirectoryAtPath("a/b", true, 0700));
    const auto status = world.files().attributesOfItemAtPath("a/b");
    ASSERT_TRUE(status.has_value());
    EXPECT_EQ(status->permissions, 0700U);
    EXPECT_TRUE(status->isOwn);
    EXPECT_NE(world.files().attributesOfItemAtPath("a")->permissions, 0700U);
  });
}

TYPED_TEST(NSFileManagerChanges, RemovesTheItemItself) {
  const Row rows[] = {{"missing", 4},
                      {"", 4},
                      {std::string_view("file\0", 5), 4},
                      {"file/x", 512},
                      {"file/", 512},
                      {"folder/.", 512},
                      {"folder/..", 512},
                      {".", 512},
                      {"..", 512},
                      {"/", 512},
                      {"link-to-itself/x", 512},
                      {kTooLong, 514},
                      {kTooLongPath, 514},
                      {"link-to-folder", kSuccess},
                      {"link-to-file", kSuccess},
                      {"link-to-nothing", kSuccess},
                      {"link-to-itself", kSuccess},
                      {"file", kSuccess},
                      {"file", 4},
                      {"folder/", kSuccess},
                      {"folder", 4},
                      {"a b\n%", kSuccess}};
  TypeParam::play([&rows](TypeParam& world) {
    fill(world);
    for (const Row& row : rows) {
      if (row.path == "file") {
        EXPECT_TRUE(world.files().fileExistsAtPath("folder/inner"));
      }
      EXPECT_EQ(
          codeOf(row.path,
                 [&](auto* error) { return world.files().removeItemAtPath(row.path, error); }),
          row.code)
          << row.path;
    }
    for (const char* gone : {"file", "folder", "a b\n%", "link-to-folder"})
      EXPECT_FALSE(world.files().attributesOfItemAtPath(gone).has_value()) << gone;
  });
}

TYPED_TEST(NSFileManagerChanges, NeverFollowsALinkWhileRemoving) {
  TypeParam::play([](TypeParam& world) {
    world.file("outside/kept");
    world.link("doomed/deep/link", "../../outside");
    world.link("doomed/absolute", world.path("outside"));
    world.link("link", "outside");
    world.enter("");
    EXPECT_TRUE(world.files().removeItemAtPath("doomed"));
    EXPECT_TRUE(world.files().removeItemAtPath("link/"));
    EXPECT_FALSE(world.files().attributesOfItemAtPath("link").has_value());
    EXPECT_FALSE(world.files().fileExistsAtPath("doomed"));
    EXPECT_TRUE(world.files().fileExistsAtPath("outside/kept"));
  });
}

TYPED_TEST(NSFileManagerChanges, SaysThatPermissionIsMissing) {
  TypeParam::play([](TypeParam& world) {
    world.file("locked/file");
    world.forbidChangesIn("locked");
    world.enter("");
    NSFileManager& files = world.files();
    const auto code = [](std::string_view path, const auto& operation) {
      return codeOf(path, operation);
    };
    EXPECT_EQ(
        code("locked/file", [&](auto* e) { return files.removeItemAtPath("locked/file", e); }),
        513);
    EXPECT_EQ(code("locked", [&](auto* e) { return files.removeItemAtPath("locked", e); }), 513);
    EXPECT_EQ(code("locked/x",
                   [&](auto* e) { return files.createDirectoryAtPath("locked/x", false, e); }),
              513);
    EXPECT_EQ(code("locked/x/y",
                   [&](auto* e) { return files.createDirectoryAtPath("locked/x/y", true, e); }),
              513);
    EXPECT_FALSE(files.createFileAtPath("locked/new"));
    EXPECT_TRUE(files.fileExistsAtPath("locked/file"));
  });
}

TYPED_TEST(NSFileManagerChanges, MakesAnEmptyFileAndLeavesOneThatExists) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    struct Case {
      std::string_view path;
      bool isMade;
    };
    const Case cases[] = {{"new", true},
                          {"new", true},
                          {"file", true},
                          {"folder/\xFF\n", true},
                          {"folder", false},
                          {"link-to-file", true},
                          {"link-to-folder", false},
                          {"link-to-nothing", false},
                          {"missing/x", false},
                          {"file/x", false},
                          {"", false},
                          {std::string_view("z\0", 2), false},
                          {kTooLong, false}};
    for (const Case& each : cases)
      EXPECT_EQ(world.files().createFileAtPath(each.path), each.isMade) << each.path;
    const auto status = world.files().attributesOfItemAtPath("new");
    ASSERT_TRUE(status.has_value());
    EXPECT_EQ(status->type, FileType::regular);
  });
}

TYPED_TEST(NSFileManagerChanges, TellsTheTypeOfTheItemItself) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    const auto type = [&world](std::string_view path) {
      const auto status = world.files().attributesOfItemAtPath(path);
      return status ? nameOfFileType(status->type) : "missing";
    };
    EXPECT_EQ(type("file"), "NSFileTypeRegular");
    EXPECT_EQ(type("folder"), "NSFileTypeDirectory");
    EXPECT_EQ(type("link-to-file"), "NSFileTypeSymbolicLink");
    EXPECT_EQ(type("link-to-nothing"), "NSFileTypeSymbolicLink");
    EXPECT_EQ(type("link-to-folder/"), "NSFileTypeDirectory");
    const Row rows[] = {{"missing", 260},          {"", 260},          {"file/x", 256},
                        {"link-to-itself/x", 256}, {kTooLong, 258},    {kTooLongPath, 258},
                        {"link-to-nothing/", 260}, {"file", kSuccess}, {"/", kSuccess}};
    for (const Row& row : rows) {
      EXPECT_EQ(codeOf(row.path,
                       [&](auto* error) {
                         return world.files().attributesOfItemAtPath(row.path, error).has_value();
                       }),
                row.code)
          << row.path;
    }
  });
}

TYPED_TEST(NSFileManagerChanges, ReadsALinksTextAsItStands) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    const std::string longText = std::string(1000, '/') + "\xFF \n%";
    world.link("long", longText);
    world.link("to-link", "link-to-nothing");
    NSFileManager& files = world.files();
    EXPECT_EQ(files.destinationOfSymbolicLinkAtPath("link-to-file"), "file");
    EXPECT_EQ(files.destinationOfSymbolicLinkAtPath("link-to-nothing"), "missing");
    EXPECT_EQ(files.destinationOfSymbolicLinkAtPath("to-link"), "link-to-nothing");
    EXPECT_EQ(files.destinationOfSymbolicLinkAtPath("long"), longText);
    const Row rows[] = {{"file", 256}, {"folder", 256}, {"missing", 260}, {"", 260}};
    for (const Row& row : rows) {
      EXPECT_EQ(codeOf(row.path,
                       [&](auto* error) {
                         return files.destinationOfSymbolicLinkAtPath(row.path, error).has_value();
                       }),
                row.code)
          << row.path;
    }
  });
}

TYPED_TEST(NSFileManagerChanges, KnowsTheCurrentFolder) {
  TypeParam::play([](TypeParam& world) {
    world.folder("here\xFF \n");
    world.enter("here\xFF \n");
    EXPECT_EQ(world.files().currentDirectoryPath(), world.path("here\xFF \n"));
  });
}

}  // namespace
}  // namespace vornix::contract
