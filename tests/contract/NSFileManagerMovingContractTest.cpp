#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/files/NSFileManager.h"
#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

template <typename World>
class NSFileManagerMoving : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld>;
TYPED_TEST_SUITE(NSFileManagerMoving, Worlds);

// 0 for success, which has to leave the error alone.
std::int64_t codeOf(const std::function<bool(std::optional<NSError>*)>& operation) {
  const NSError untouched{.domain = "untouched"};
  std::optional<NSError> error = untouched;
  const bool isDone = operation(&error);
  EXPECT_EQ(isDone, error == untouched);
  return isDone ? 0 : error.value_or(NSError{.code = -1}).code;
}

void fill(auto& world) {
  world.file("file");
  world.file("other");
  world.file("folder/inner/deep");
  world.folder("empty");
  world.link("link", "file");
  world.link("link-to-folder", "folder");
  world.link("dangling", "missing");
  world.link("loop", "loop");
  world.enter("");
}

struct MoveRow {
  std::string_view from;
  std::string_view to;
  std::int64_t code;
};

const std::string kTooLong(256, 'x');
const std::string kLongest(255, 'x');

TYPED_TEST(NSFileManagerMoving, NeverReplacesWhatStandsAtTheDestination) {
  const MoveRow rows[] = {
      {"file", "other", 516},         {"file", "folder", 516},   {"file", "empty", 516},
      {"folder", "empty", 516},       {"folder", "empty/", 516}, {"file", "link", 516},
      {"file", "dangling", 516},      {"file", "loop", 516},     {"link", "file", 516},
      {"missing", "file", 516},       {"", "file", 516},         {"file/x", "file", 516},
      {"file", "file", 516},          {"file", "./file", 516},   {"folder", "folder/", 516},
      {"file", "folder/..", 516},     {"file", ".", 516},        {"file", "/", 516},
      {"folder/inner", "folder", 516}};
  TypeParam::play([&rows](TypeParam& world) {
    fill(world);
    for (const MoveRow& row : rows) {
      EXPECT_EQ(codeOf([&](auto* error) {
                  return world.files().moveItemAtPath(row.from, row.to, error);
                }),
                row.code)
          << row.from << " to " << row.to;
    }
    for (const char* there : {"file", "other", "folder/inner/deep", "empty", "link", "dangling"})
      EXPECT_TRUE(world.files().attributesOfItemAtPath(there).has_value()) << there;
  });
}

TYPED_TEST(NSFileManagerMoving, SaysWhyAnItemCannotBeMoved) {
  const MoveRow rows[] = {{"missing", "new", 4},
                          {"", "new", 4},
                          {std::string_view("file\0", 5), "new", 4},
                          {"file", "", 4},
                          {"file", std::string_view("new\0", 4), 4},
                          {"file", "missing/new", 4},
                          {"missing/x", "new", 4},
                          {"dangling/x", "new", 4},
                          {"file/x", "new", 512},
                          {"file", "other/new", 512},
                          {"file/", "new", 512},
                          {"file", "new/", 512},
                          {"loop/x", "new", 512},
                          {"file", "loop/new", 512},
                          {"folder", "folder/new", 512},
                          {"folder", "folder/inner/new", 512},
                          {".", "new", 512},
                          {"..", "new", 512},
                          {"folder/.", "new", 512},
                          {"/", "new", 512},
                          {"file", kTooLong, 514},
                          {kTooLong, "new", 514},
                          {"folder", std::string_view(kTooLong), 514}};
  TypeParam::play([&rows](TypeParam& world) {
    fill(world);
    for (const MoveRow& row : rows) {
      EXPECT_EQ(codeOf([&](auto* error) {
                  return world.files().moveItemAtPath(row.from, row.to, error);
                }),
                row.code)
          << row.from << " to " << row.to;
    }
    EXPECT_FALSE(world.files().attributesOfItemAtPath("new").has_value());
    EXPECT_TRUE(world.files().fileExistsAtPath("folder/inner/deep"));
  });
}

TYPED_TEST(NSFileManagerMoving, GivesItemsOtherPaths) {
  const MoveRow rows[] = {{"file", "moved", 0},
                          {"moved", "folder/moved", 0},
                          {"folder/moved", "empty/../a\n\xFF%2F", 0},
                          {"a\n\xFF%2F", kLongest, 0},
                          {"folder", "empty/folder/", 0},
                          {"empty/folder/", "back", 0},
                          {"link", "moved-link", 0},
                          {"dangling", "moved-dangling", 0},
                          {"loop", "moved-loop", 0},
                          {"back/inner/deep", "link-to-folder-is-gone", 0}};
  TypeParam::play([&rows](TypeParam& world) {
    fill(world);
    for (const MoveRow& row : rows) {
      EXPECT_EQ(codeOf([&](auto* error) {
                  return world.files().moveItemAtPath(row.from, row.to, error);
                }),
                row.code)
          << row.from << " to " << row.to;
      EXPECT_FALSE(world.files().attributesOfItemAtPath(row.from).has_value()) << row.from;
    }
    EXPECT_TRUE(world.files().fileExistsAtPath(kLongest));
    EXPECT_TRUE(world.files().fileExistsAtPath("back/inner"));
    EXPECT_TRUE(world.files().fileExistsAtPath("link-to-folder-is-gone"));
    EXPECT_EQ(world.files().destinationOfSymbolicLinkAtPath("moved-link"), "file");
    EXPECT_EQ(world.files().destinationOfSymbolicLinkAtPath("moved-dangling"), "missing");
  });
}

TYPED_TEST(NSFileManagerMoving, MovesALinkItselfAlsoWithASlashBehindIt) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    EXPECT_TRUE(world.files().moveItemAtPath("link-to-folder/", "new"));
    EXPECT_EQ(world.files().destinationOfSymbolicLinkAtPath("new"), "folder");
    EXPECT_TRUE(world.files().fileExistsAtPath("folder/inner/deep"));
  });
}

TYPED_TEST(NSFileManagerMoving, NamesThePathThatIsInTheWay) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    std::optional<NSError> error;
    EXPECT_FALSE(world.files().moveItemAtPath("file", "other", &error));
    EXPECT_EQ(error->filePath, "other");
    EXPECT_EQ(error->underlyingErrno, EEXIST);
    EXPECT_FALSE(world.files().moveItemAtPath("missing", "new", &error));
    EXPECT_EQ(error->filePath, "missing");
    EXPECT_EQ(error->underlyingErrno, ENOENT);
    EXPECT_EQ(error->domain, NSCocoaErrorDomain);
  });
}

TYPED_TEST(NSFileManagerMoving, NeedsPermissionOnBothSides) {
  for (const bool isSource : {true, false}) {
    TypeParam::play([isSource](TypeParam& world) {
      world.file("locked/file");
      world.file("open/file");
      world.forbidChangesIn("locked");
      world.enter("");
      const char* from = isSource ? "locked/file" : "open/file";
      const char* to = isSource ? "open/new" : "locked/new";
      EXPECT_EQ(codeOf([&](auto* error) { return world.files().moveItemAtPath(from, to, error); }),
                513);
      EXPECT_TRUE(world.files().fileExistsAtPath(from));
      EXPECT_FALSE(world.files().fileExistsAtPath(to));
    });
  }
}

TYPED_TEST(NSFileManagerMoving, MovesByUrlsOfFilesOnly) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    NSFileManager& files = world.files();
    const NSURL web = *NSURL::URLWithString("https://example.org/file");
    const NSURL file = NSURL::fileURLWithPath(world.path("file"), false);
    const NSURL moved = NSURL::fileURLWithPath(world.path("moved"), true);
    const NSURL made = NSURL::fileURLWithPath(world.path("made/below"), true);
    const NSURL empty = *NSURL::URLWithString("file://");
    EXPECT_EQ(codeOf([&](auto* error) { return files.moveItemAtURL(web, moved, error); }), 518);
    EXPECT_EQ(codeOf([&](auto* error) { return files.moveItemAtURL(file, web, error); }), 518);
    EXPECT_EQ(codeOf([&](auto* error) { return files.moveItemAtURL(empty, moved, error); }), 4);
    EXPECT_EQ(codeOf([&](auto* error) { return files.moveItemAtURL(file, moved, error); }), 0);
    EXPECT_TRUE(files.fileExistsAtPath("moved"));
    EXPECT_EQ(codeOf([&](auto* error) { return files.createDirectoryAtURL(web, true, error); }),
              518);
    EXPECT_EQ(codeOf([&](auto* error) { return files.createDirectoryAtURL(made, false, error); }),
              4);
    EXPECT_EQ(codeOf([&](auto* error) { return files.createDirectoryAtURL(made, true, error); }),
              0);
    EXPECT_TRUE(files.fileExistsAtPath("made/below"));
    EXPECT_EQ(codeOf([&](auto* error) { return files.trashItemAtURL(web, error); }), 518);
  });
}

TYPED_TEST(NSFileManagerMoving, SetsNoAttributesOfWhatIsMissing) {
  TypeParam::play([](TypeParam& world) {
    fill(world);
    NSFileManager& files = world.files();
    const auto set = [&files](const Dictionary& attributes, std::string_view path) {
      return codeOf([&](auto* error) { return files.setAttributes(attributes, path, error); });
    };
    for (const Dictionary& attributes :
         {Dictionary{}, Dictionary{{std::string(NSFileImmutable), false}}}) {
      EXPECT_EQ(set(attributes, "missing"), 4);
      EXPECT_EQ(set(attributes, ""), 4);
      EXPECT_EQ(set(attributes, std::string_view("file\0", 5)), 4);
      EXPECT_EQ(set(attributes, "file/x"), 512);
      EXPECT_EQ(set(attributes, kTooLong), 514);
    }
    EXPECT_EQ(set({}, "file"), 0);
    EXPECT_EQ(set({{"NSFileUnheardOf", 7}}, "file"), 0);
    for (const char* path : {"file", "folder", "link", "dangling"}) {
      EXPECT_EQ(set({{std::string(NSFileImmutable), false}}, path), 0) << path;
      EXPECT_FALSE(files.attributesOfItemAtPath(path)->isImmutable) << path;
    }
    EXPECT_EQ(set({{std::string(NSFileImmutable), true}}, "link"), 512);
  });
}

TYPED_TEST(NSFileManagerMoving, KeepsImmutableItemsAndWhatImmutableFoldersHold) {
  if (std::is_same_v<TypeParam, LinuxFileWorld> && geteuid() != 0)
    GTEST_SKIP() << "NOT TESTED: only root may set the flag";
  TypeParam::play([](TypeParam& world) {
    fill(world);
    NSFileManager& files = world.files();
    const Dictionary locked{{std::string(NSFileImmutable), true}};
    const Dictionary unlocked{{std::string(NSFileImmutable), false}};
    EXPECT_TRUE(files.setAttributes(locked, "file"));
    EXPECT_TRUE(files.setAttributes(locked, "folder"));
    EXPECT_TRUE(files.attributesOfItemAtPath("file")->isImmutable);
    EXPECT_FALSE(files.attributesOfItemAtPath("link")->isImmutable);
    EXPECT_EQ(codeOf([&](auto* error) { return files.removeItemAtPath("file", error); }), 513);
    EXPECT_EQ(codeOf([&](auto* error) { return files.moveItemAtPath("file", "x", error); }), 513);
    EXPECT_EQ(codeOf([&](auto* error) { return files.removeItemAtPath("folder/inner", error); }),
              513);
    EXPECT_EQ(codeOf([&](auto* error) { return files.moveItemAtPath("other", "folder/x", error); }),
              513);
    EXPECT_EQ(codeOf([&](auto* error) { return files.removeItemAtPath("folder", error); }), 513);
    EXPECT_TRUE(files.setAttributes(unlocked, "file"));
    EXPECT_TRUE(files.setAttributes(unlocked, "folder"));
    EXPECT_FALSE(files.attributesOfItemAtPath("folder")->isImmutable);
    EXPECT_TRUE(files.removeItemAtPath("file"));
    EXPECT_TRUE(files.removeItemAtPath("folder"));
  });
}

}  // namespace
}  // namespace vornix::contract
