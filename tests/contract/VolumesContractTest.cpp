#include "platform/files/Volumes.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

// Names the volume by the world's name for its folder; "outside" for the one that holds the world.
struct Row {
  std::string_view path;
  std::optional<std::string_view> volume;
};

template <typename World>
class VolumesContract : public testing::Test {
 protected:
  static void expect(const World& world, const Row& row) {
    EXPECT_EQ(world.volumes().volumePathOf(row.path), named(world, row)) << row.path;
  }

 private:
  static std::optional<std::string> named(const World& world, const Row& row) {
    if (!row.volume) return std::nullopt;
    if (row.volume == "outside") return world.volumes().volumePathOf(world.path(""));
    return row.volume == "/" ? "/" : world.path(std::string(*row.volume));
  }
};

using Worlds = testing::Types<FakeFileWorld, LinuxFileWorld>;
TYPED_TEST_SUITE(VolumesContract, Worlds);

#define PLAY(story) \
  if (TypeParam::play(story) == TypeParam::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount

TYPED_TEST(VolumesContract, FindsTheVolumeThatReallyHoldsTheItem) {
  constexpr Row rows[] = {{"disk", "disk"},
                          {"disk/", "disk"},
                          {"disk//", "disk"},
                          {"disk/.", "disk"},
                          {"disk/..", "outside"},
                          {"disk/file", "disk"},
                          {"disk/a/b/c", "disk"},
                          {"disk/a/b/", "disk"},
                          {"disk/a/../file", "disk"},
                          {"disk/inner", "disk/inner"},
                          {"disk/inner/file", "disk/inner"},
                          {"disk/inner/../file", "disk"},
                          {"disk/link-out", "disk"},
                          {"disk/link-out/", "outside"},
                          {"disk/link-out/plain", "outside"},
                          {"disk/link-in", "disk"},
                          {"disk/link-in/", "disk/inner"},
                          {"disk/link-in/file", "disk/inner"},
                          {"link-to-disk", "outside"},
                          {"link-to-disk/", "disk"},
                          {"link-to-disk/a", "disk"},
                          {"link-to-disk/..", "outside"},
                          {"link-to-file", "outside"},
                          {"link-to-nothing", "outside"},
                          {"link-to-itself", "outside"},
                          {"link-to-itself/", std::nullopt},
                          {"link-to-nothing/", std::nullopt},
                          {"plain", "outside"},
                          {"again", "again"},
                          {"again/b/c", "again"},
                          {"disk/again", "disk/again"},
                          {"disk/again/b/c", "disk/again"},
                          {"disk/again/..", "disk"},
                          {"disk/single", "disk/single"},
                          {"disk-2/plain", "disk-2/plain"},
                          {"single", "single"},
                          {"single/", std::nullopt},
                          {"single/x", std::nullopt},
                          {"disk\xFF\xFE \n\\040", "disk\xFF\xFE \n\\040"},
                          {"disk\xFF\xFE \n\\040/\xED\xA0\x80", "disk\xFF\xFE \n\\040"},
                          {"disk-2", "outside"},
                          {"missing", std::nullopt},
                          {"disk/missing", std::nullopt},
                          {"disk/file/", std::nullopt},
                          {"disk/file/x", std::nullopt},
                          {"missing/../disk", std::nullopt}};
  PLAY([&rows](TypeParam& world) {
    world.folder("disk");
    world.mount("disk");
    world.file("disk/file");
    world.file("disk/a/b/c");
    world.folder("disk/inner");
    world.mount("disk/inner");
    world.file("disk/inner/file");
    world.file("plain");
    world.link("disk/link-out", world.path(""));
    world.link("disk/link-in", "inner");
    world.link("link-to-disk", "disk");
    world.link("link-to-file", "disk/file");
    world.link("link-to-nothing", "disk/missing");
    world.link("link-to-itself", "link-to-itself");
    world.folder("again");
    world.bind("disk/a", "again");
    world.folder("disk/again");
    world.bind("disk/a", "disk/again");
    world.file("single");
    world.bind("disk/file", "single");
    world.file("disk/single");
    world.bind("disk/file", "disk/single");
    world.file("disk-2/plain");
    world.bind("plain", "disk-2/plain");
    world.folder("disk\xFF\xFE \n\\040");
    world.mount("disk\xFF\xFE \n\\040");
    world.file("disk\xFF\xFE \n\\040/\xED\xA0\x80");
    for (const Row& row : rows) {
      const std::string whole = world.path(std::string(row.path));
      TestFixture::expect(world, {whole, row.volume});
      world.enter("");
      TestFixture::expect(world, row);
      world.enter("disk/a");
      TestFixture::expect(world, {"../../" + std::string(row.path), row.volume});
    }
  });
}

TYPED_TEST(VolumesContract, StartsRelativePathsAtTheCurrentFolder) {
  PLAY([](TypeParam& world) {
    world.folder("disk");
    world.mount("disk");
    world.file("disk/a/b");
    world.enter("disk/a");
    for (const Row& row : {Row{"b", "disk"},
                           {".", "disk"},
                           {"./", "disk"},
                           {"..", "disk"},
                           {"../..", "outside"},
                           {"../../disk", "disk"},
                           {"c", std::nullopt}}) {
      TestFixture::expect(world, row);
    }
  });
}

TYPED_TEST(VolumesContract, NamesTheUppermostOfVolumesAtOnePlace) {
  PLAY([](TypeParam& world) {
    world.folder("disk");
    world.mount("disk");
    world.mount("disk");
    world.file("disk/file");
    TestFixture::expect(world, {world.path("disk/file"), "disk"});
  });
}

TYPED_TEST(VolumesContract, KnowsTheRoot) {
  TypeParam::play([](TypeParam& world) {
    for (const Row& row : {Row{"/", "/"}, {"//", "/"}, {"/.", "/"}, {"/..", "/"}})
      TestFixture::expect(world, row);
  });
}

TYPED_TEST(VolumesContract, KnowsNoVolumeOfWhatIsNoPath) {
  TypeParam::play([](TypeParam& world) {
    world.file("file");
    world.enter("");
    const std::string huge(10'000'000, 'x');
    for (const std::string_view path : {std::string_view(), std::string_view("\0", 1),
                                        std::string_view("file\0", 5), std::string_view(huge)}) {
      TestFixture::expect(world, {path, std::nullopt});
    }
  });
}

}  // namespace
}  // namespace vornix::contract
