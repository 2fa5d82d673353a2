#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/files/NSFileManager.h"
#include "tests/contract/support/FileWorld.h"

// Every operation's code for everything that can go wrong with it.
namespace vornix::contract {
namespace {

using Operation = std::function<bool(NSFileManager&, std::optional<NSError>*)>;

struct Case {
  std::string_view what;
  Operation operation;
  // 0 for success.
  std::int64_t code;
};

Operation removing(std::string_view path) {
  return [path](auto& files, auto* error) { return files.removeItemAtPath(path, error); };
}
Operation moving(std::string_view path, std::string_view toPath) {
  return [=](auto& files, auto* error) { return files.moveItemAtPath(path, toPath, error); };
}
Operation making(std::string_view path, bool withFoldersAbove) {
  return [=](auto& files, auto* error) {
    return files.createDirectoryAtPath(path, withFoldersAbove, error);
  };
}
Operation listing(std::string_view path) {
  return [path](auto& files, auto* error) {
    return files.contentsOfDirectoryAtPath(path, error).has_value();
  };
}
Operation asking(std::string_view path) {
  return [path](auto& files, auto* error) {
    return files.attributesOfItemAtPath(path, error).has_value();
  };
}
Operation changing(std::string_view path, const Dictionary& attributes = {}) {
  return [=](auto& files, auto* error) { return files.setAttributes(attributes, path, error); };
}
Operation readingLink(std::string_view path) {
  return [path](auto& files, auto* error) {
    return files.destinationOfSymbolicLinkAtPath(path, error).has_value();
  };
}

const std::string kTooLongName(256, 'x');
const std::string kTooLongBelowNew = "new/" + kTooLongName;

// In the order of the platform's table; later ones may need what earlier ones left.
std::vector<Case> cases() {
  return {{"remove what is missing", removing("missing"), 4},
          {"remove the empty path", removing(""), 4},
          {"remove through a file", removing("file/x"), 512},
          {"move onto a file", moving("other", "file"), 516},
          {"move onto a folder", moving("file", "folder"), 516},
          {"move onto a dangling link", moving("file", "dangling"), 516},
          {"move what is missing onto a file", moving("missing", "file"), 516},
          {"move onto itself", moving("file", "file"), 516},
          {"move what is missing", moving("missing", "new"), 4},
          {"move into a folder that is missing", moving("file", "missing/new"), 4},
          {"move a folder into itself", moving("folder", "folder/new"), 512},
          {"make a folder that exists", making("folder", false), 516},
          {"make a folder where a file is", making("file", false), 516},
          {"make a folder without the one above", making("missing/new", false), 4},
          {"make folders that exist", making("folder", true), 0},
          {"make folders where a file is", making("file", true), 516},
          {"make folders through a file", making("file/x/new", true), 512},
          {"make a folder without a path", making("", false), 4},
          {"make folders without a path", making("", true), 4},
          {"list what is missing", listing("missing"), 260},
          {"list a file", listing("file"), 256},
          {"ask about what is missing", asking("missing"), 260},
          {"ask through a file", asking("file/x"), 256},
          {"change what is missing", changing("missing"), 4},
          {"read a link that is none", readingLink("file"), 256},
          {"remove a name too long", removing(kTooLongName), 514},
          {"move a name too long", moving(kTooLongName, "new"), 514},
          {"move to a name too long", moving("file", kTooLongName), 514},
          {"make a name too long", making(kTooLongName, false), 514},
          {"make folders with a name too long", making(kTooLongBelowNew, true), 514},
          {"change a name too long", changing(kTooLongName), 514},
          {"ask about a name too long", asking(kTooLongName), 258},
          {"list a name too long", listing(kTooLongName), 258},
          {"remove a link", removing("link-to-folder"), 0},
          {"remove a folder", removing("folder"), 0},
          {"make folders", making("folder/new/below", true), 0},
          {"move", moving("other", "folder/new/other"), 0}};
}

void check(NSFileManager& files, const Case& each) {
  const NSError untouched{.domain = "untouched"};
  std::optional<NSError> error = untouched;
  EXPECT_EQ(each.operation(files, &error), each.code == 0) << each.what;
  if (each.code == 0) {
    EXPECT_EQ(error, untouched) << each.what;
    return;
  }
  ASSERT_TRUE(error.has_value()) << each.what;
  EXPECT_EQ(error->domain, NSCocoaErrorDomain) << each.what;
  EXPECT_EQ(error->code, each.code) << each.what;
  EXPECT_NE(error->underlyingErrno, 0) << each.what;
}

void fillFolder(auto& world) {
  world.file("file");
  world.file("other");
  world.file("folder/below/file");
  world.file("locked/file");
  world.link("link-to-folder", "folder");
  world.link("dangling", "missing");
  world.enter("");
}

template <typename World>
class FileErrorCodes : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld>;
TYPED_TEST_SUITE(FileErrorCodes, Worlds);

TYPED_TEST(FileErrorCodes, TellEveryFailureApart) {
  TypeParam::play([](TypeParam& world) {
    fillFolder(world);
    for (const Case& each : cases()) check(world.files(), each);
    EXPECT_TRUE(world.files().fileExistsAtPath("file"));
    EXPECT_TRUE(world.files().fileExistsAtPath("folder/new/other"));
  });
}

TYPED_TEST(FileErrorCodes, TellWhereThePermissionIsMissing) {
  TypeParam::play([](TypeParam& world) {
    fillFolder(world);
    world.forbidChangesIn("locked");
    for (const Case& each : {Case{"remove", removing("locked/file"), 513},
                             Case{"remove the folder", removing("locked"), 513},
                             Case{"move from", moving("locked/file", "new"), 513},
                             Case{"move to", moving("file", "locked/new"), 513},
                             Case{"make", making("locked/new", false), 513},
                             Case{"make more", making("locked/new/below", true), 513}})
      check(world.files(), each);
  });
}

TYPED_TEST(FileErrorCodes, TellWhatIsImmutable) {
  if (std::is_same_v<TypeParam, LinuxFileWorld> && geteuid() != 0)
    GTEST_SKIP() << "NOT TESTED: only root may set the flag";
  TypeParam::play([](TypeParam& world) {
    fillFolder(world);
    const Dictionary locked{{std::string(NSFileImmutable), true}};
    const Dictionary unlocked{{std::string(NSFileImmutable), false}};
    for (const Case& each :
         {Case{"lock", changing("file", locked), 0},
          Case{"lock a folder", changing("folder", locked), 0},
          Case{"remove", removing("file"), 513},
          Case{"remove from a folder", removing("folder/below"), 513},
          Case{"remove a folder", removing("folder"), 513},
          Case{"move", moving("file", "new"), 513}, Case{"make", making("folder/new", false), 513},
          Case{"unlock", changing("file", unlocked), 0},
          Case{"unlock a folder", changing("folder", unlocked), 0},
          Case{"remove then", removing("file"), 0}})
      check(world.files(), each);
  });
}

// What only the real file systems refuse.
class LinuxFileErrorCodes : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(, LinuxFileErrorCodes, testing::Bool(),
                         [](const auto& each) { return each.param ? "InMemory" : "OnDisk"; });

TEST_P(LinuxFileErrorCodes, TellEveryFailureApart) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    if (GetParam()) world.mount("");
    fillFolder(world);
    for (const Case& each : cases()) check(LinuxFileWorld::files(), each);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(LinuxFileErrorCodes, TellOfFoldersThatMayNotBeEntered) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    if (GetParam()) world.mount("");
    fillFolder(world);
    world.forbidChangesIn("locked");
    EXPECT_EQ(chmod(world.path("locked").c_str(), 0), 0);
    const Dictionary locked{{std::string(NSFileImmutable), true}};
    for (const Case& each :
         {Case{"list", listing("locked"), 257}, Case{"ask", asking("locked/file"), 257},
          Case{"read a link", readingLink("locked/file"), 257},
          Case{"change", changing("locked/file"), 513},
          Case{"lock without being root", changing("file", locked), 513},
          Case{"remove", removing("locked/file"), 513}, Case{"remove it", removing("locked"), 513},
          Case{"move from", moving("locked/file", "new"), 513},
          Case{"move to", moving("file", "locked/new"), 513}})
      check(LinuxFileWorld::files(), each);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(FileErrorCodesOfVolumes, TellWhatIsReadOnlyOrFull) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("read-only");
    world.folder("full");
    world.mount("read-only");
    world.mountSmall("full", "nr_inodes=3");
    world.file("read-only/file");
    world.makeReadOnly("read-only");
    world.file("full/file");
    world.folder("full/folder");
    world.enter("");
    for (const Case& each :
         {Case{"make", making("read-only/new", false), 642},
          Case{"remove", removing("read-only/file"), 642},
          Case{"move", moving("read-only/file", "read-only/new"), 642},
          Case{"make", making("full/new", false), 640}, Case{"move", moving("full/file", "x"), 0}})
      check(LinuxFileWorld::files(), each);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

}  // namespace
}  // namespace vornix::contract
