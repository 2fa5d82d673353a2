#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

template <typename World>
class FileWalk : public testing::Test {};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld, TmpfsFileWorld>;
TYPED_TEST_SUITE(FileWalk, Worlds);

constexpr bool kRecursive = true;
constexpr bool kFlat = false;

// A path, and whether it was told as a folder.
using Call = std::pair<std::string, bool>;
using Calls = std::vector<Call>;

template <typename World>
Calls callsOf(World& world, const std::string& path, bool recursive) {
  Calls calls;
  EXPECT_TRUE(com_orvane_FTSWalkAtPath(world.files(), path, recursive,
                                       [&calls](std::string_view item, bool isFolder, bool& stop) {
                                         EXPECT_FALSE(stop);
                                         calls.emplace_back(item, isFolder);
                                       }));
  std::ranges::sort(calls);
  return calls;
}

TYPED_TEST(FileWalk, TellsEachItemOnce) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/folder/inner");
    world.file("top/.file");
    world.link("top/link", "folder");
    world.enter("");
    EXPECT_EQ(callsOf(world, "top", kRecursive), (Calls{{"top/.file", false},
                                                        {"top/folder", true},
                                                        {"top/folder/inner", false},
                                                        {"top/link", false}}));
    EXPECT_EQ(callsOf(world, "top", kFlat),
              (Calls{{"top/.file", false}, {"top/folder", true}, {"top/link", false}}));
  });
}

TYPED_TEST(FileWalk, MakesOneCallWhereTheHandlerStopsAtOnce) {
  TypeParam::play([](TypeParam& world) {
    for (const char* name : {"top/a/x", "top/b/x", "top/c/x"}) world.file(name);
    int calls = 0;
    EXPECT_TRUE(com_orvane_FTSWalkAtPath(world.files(), world.path("top"), kRecursive,
                                         [&calls](std::string_view, bool, bool& stop) {
                                           ++calls;
                                           stop = true;
                                         }));
    EXPECT_EQ(calls, 1);
  });
}

TYPED_TEST(FileWalk, MakesNoCallForWhatIsNoFolderOrEmpty) {
  TypeParam::play([](TypeParam& world) {
    world.file("file");
    world.folder("empty");
    world.link("link", "empty");
    for (const char* name : {"file", "empty", "link", "missing", "file/", "missing/inner"}) {
      for (const bool recursive : {kFlat, kRecursive})
        EXPECT_EQ(callsOf(world, world.path(name), recursive), Calls{}) << name;
    }
  });
}

TYPED_TEST(FileWalk, DoesNothingWithoutAHandlerOrAPath) {
  TypeParam::play([](TypeParam& world) {
    EXPECT_FALSE(com_orvane_FTSWalkAtPath(world.files(), world.path(""), kRecursive, nullptr));
    EXPECT_FALSE(com_orvane_FTSWalkAtPath(world.files(), "", kRecursive,
                                          [](auto, bool, bool&) { ADD_FAILURE(); }));
  });
}

TYPED_TEST(FileWalk, TellsAnUnreadableFolderTwiceUnlessItIsNotEntered) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/closed/inner");
    world.enter("");
    world.forbidReading("top/closed");
    EXPECT_EQ(callsOf(world, "top", kRecursive),
              (Calls{{"top/closed", false}, {"top/closed", true}}));
    EXPECT_EQ(callsOf(world, "top", kFlat), (Calls{{"top/closed", true}}));
  });
}

TYPED_TEST(FileWalk, TellsAFolderOnAnotherDeviceButNotWhatItHolds) {
  const auto outcome = TypeParam::play([](TypeParam& world) {
    world.folder("top/mount");
    world.mount("top/mount");
    world.file("top/mount/inner");
    world.enter("");
    EXPECT_EQ(callsOf(world, "top", kRecursive), (Calls{{"top/mount", true}}));
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TYPED_TEST(FileWalk, EndsWithWhatTheHandlerThrows) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/a");
    world.file("top/b");
    int calls = 0;
    EXPECT_THROW(com_orvane_FTSWalkAtPath(world.files(), world.path("top"), kRecursive,
                                          [&calls](std::string_view, bool, bool&) {
                                            ++calls;
                                            throw std::runtime_error("enough");
                                          }),
                 std::runtime_error);
    EXPECT_EQ(calls, 1);
  });
}

TYPED_TEST(FileWalk, KeepsTheHandlerAliveThoughItsOwnerLetsGo) {
  TypeParam::play([](TypeParam& world) {
    world.file("top/a");
    world.file("top/b");
    int calls = 0;
    WalkHandler handler;
    handler = [&](std::string_view, bool, bool&) {
      ++calls;
      handler = nullptr;
    };
    EXPECT_TRUE(com_orvane_FTSWalkAtPath(world.files(), world.path("top"), kRecursive, handler));
    EXPECT_EQ(calls, 2);
  });
}

}  // namespace
}  // namespace vornix::contract
