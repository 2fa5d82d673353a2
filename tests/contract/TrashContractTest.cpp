#include "platform/files/Trash.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include "tests/contract/support/FileWorld.h"

namespace vornix::contract {
namespace {

// A world with a person's home in its folder "home"; the Trash is asked for below the root.
class FakeTrashWorld : public FakeFileWorld {
 public:
  // The paths of what lies in the Trash of the home's volume.
  [[nodiscard]] std::multiset<std::string> thrownAway() const {
    std::multiset<std::string> names;
    for (const std::string& name :
         files().contentsOfDirectoryAtPath("/Trash").value_or(std::vector<std::string>{}))
      names.insert("/Trash/" + name);
    return names;
  }
  void volumeWithoutTrash(const std::string& name) {
    mount(name);
    trash().omitFor(path(name));
  }

  static Outcome playInHome(const std::function<void(FakeTrashWorld&)>& story) {
    FakeTrashWorld world;
    story(world);
    return Outcome::played;
  }
};

class LinuxTrashWorld {
 public:
  explicit LinuxTrashWorld(LinuxFileWorld& world) : world_(world) {}

  [[nodiscard]] static Trash& trash() { return sharedTrash(); }
  [[nodiscard]] static NSFileManager& files() { return LinuxFileWorld::files(); }
  [[nodiscard]] std::string path(const std::string& name) const { return world_.path(name); }
  void folder(const std::string& name) { world_.folder(name); }
  void file(const std::string& name) { world_.file(name); }
  void link(const std::string& name, const std::string& target) { world_.link(name, target); }
  void enter(const std::string& name) { world_.enter(name); }
  [[nodiscard]] std::multiset<std::string> thrownAway() const {
    std::multiset<std::string> paths;
    std::error_code missing;
    for (const auto& item :
         std::filesystem::directory_iterator(path("home/.local/share/Trash/files"), missing))
      paths.insert(item.path());
    return paths;
  }
  void volumeWithoutTrash(const std::string& name) { world_.mount(name); }

  static LinuxFileWorld::Outcome playInHome(const std::function<void(LinuxTrashWorld&)>& story) {
    return LinuxFileWorld::play([&story](LinuxFileWorld& world) {
      world.folder("home");
      setenv("HOME", world.path("home").c_str(), 1);
      unsetenv("XDG_DATA_HOME");
      LinuxTrashWorld trashWorld(world);
      story(trashWorld);
    });
  }

 private:
  LinuxFileWorld& world_;
};

template <typename World>
class TrashContract : public testing::Test {};

using Worlds = testing::Types<FakeTrashWorld, LinuxTrashWorld>;
TYPED_TEST_SUITE(TrashContract, Worlds);

TYPED_TEST(TrashContract, TakesFilesFoldersAndLinksThemselves) {
  TypeParam::playInHome([](TypeParam& world) {
    world.file("file");
    world.file("folder/inner");
    world.file("kept");
    world.link("link", "kept");
    world.link("dangling", "missing");
    world.file("odd\n\xFF%2F name");
    for (const char* name : {"file", "folder", "link", "dangling", "odd\n\xFF%2F name"}) {
      EXPECT_EQ(world.trash().moveToTrash(world.path(name)), 0) << name;
      EXPECT_FALSE(world.files().attributesOfItemAtPath(world.path(name)).has_value()) << name;
    }
    EXPECT_EQ(world.thrownAway().size(), 5U);
    EXPECT_TRUE(world.files().fileExistsAtPath(world.path("kept")));
  });
}

TYPED_TEST(TrashContract, KeepsWhatWasThrownAwayUnderTheSameNameBefore) {
  TypeParam::playInHome([](TypeParam& world) {
    for (int number = 0; number < 5; ++number) {
      world.file("folder/name.txt");
      EXPECT_EQ(world.trash().moveToTrash(world.path("folder/name.txt")), 0);
    }
    EXPECT_EQ(world.trash().moveToTrash(world.path("folder/")), 0);
    world.file("folder");
    EXPECT_EQ(world.trash().moveToTrash(world.path("folder")), 0);
    EXPECT_EQ(world.thrownAway().size(), 7U);
  });
}

TYPED_TEST(TrashContract, SaysWhatIsMissing) {
  TypeParam::playInHome([](TypeParam& world) {
    world.file("file");
    EXPECT_EQ(world.trash().moveToTrash(world.path("missing")), ENOENT);
    EXPECT_EQ(world.trash().moveToTrash(world.path("missing/x")), ENOENT);
    EXPECT_EQ(world.trash().moveToTrash(""), ENOENT);
    EXPECT_EQ(world.trash().moveToTrash(std::string_view("/\0", 2)), ENOENT);
    EXPECT_TRUE(world.files().fileExistsAtPath(world.path("file")));
  });
}

TYPED_TEST(TrashContract, LeavesItemsOnAVolumeWithoutTrashAlone) {
  const auto outcome = TypeParam::playInHome([](TypeParam& world) {
    world.folder("without");
    world.volumeWithoutTrash("without");
    world.file("without/file");
    EXPECT_EQ(world.trash().moveToTrash(world.path("without/file")), EOPNOTSUPP);
    EXPECT_TRUE(world.files().fileExistsAtPath(world.path("without/file")));
    EXPECT_EQ(world.thrownAway().size(), 0U);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(GioTrash, FindsTheItemBehindALinkAsTheSystemDoes) {
  LinuxTrashWorld::playInHome([](LinuxTrashWorld& world) {
    world.file("far/away/file");
    world.file("far/other");
    world.file("other");
    world.link("link", "far/away");
    EXPECT_EQ(world.trash().moveToTrash(world.path("link/../other")), 0);
    EXPECT_FALSE(world.files().fileExistsAtPath(world.path("far/other")));
    EXPECT_TRUE(world.files().fileExistsAtPath(world.path("other")));
  });
}

TEST(GioTrash, RefusesWhatNamesNoItem) {
  LinuxTrashWorld::playInHome([](LinuxTrashWorld& world) {
    world.folder("folder");
    EXPECT_EQ(world.trash().moveToTrash("/"), EBUSY);
    EXPECT_EQ(world.trash().moveToTrash(world.path("folder/.")), EINVAL);
    EXPECT_EQ(world.trash().moveToTrash(world.path("folder/..")), EINVAL);
    EXPECT_TRUE(world.files().fileExistsAtPath(world.path("folder")));
  });
}

// A disk that was plugged in has a Trash of its own.
TEST(GioTrash, UsesTheTrashOfAnotherVolume) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("home");
    setenv("HOME", world.path("home").c_str(), 1);
    world.folder("disk");
    world.mountImage("disk", "");
    world.file("disk/one/name");
    world.file("disk/two/name");
    EXPECT_EQ(sharedTrash().moveToTrash(world.path("disk/one/name")), 0);
    EXPECT_EQ(sharedTrash().moveToTrash(world.path("disk/two/name")), 0);
    const std::string trash = world.path("disk/.Trash-" + std::to_string(geteuid()) + "/files");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(trash), {}), 2);
    EXPECT_FALSE(std::filesystem::exists(world.path("disk/one/name")));
    EXPECT_FALSE(std::filesystem::exists(world.path("home/.local/share/Trash")));
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMountDisks;
}

}  // namespace
}  // namespace vornix::contract
