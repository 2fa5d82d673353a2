#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>

#include "platform/base/Diagnostics.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/CrossingVolumes.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/TreeText.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

class VolumeCrossing : public CrossingVolumes {};

INSTANTIATE_TEST_SUITE_P(, VolumeCrossing,
                         testing::Values(Crossing{"FromDiskToMemory", "here", "memory"},
                                         Crossing{"FromMemoryToDisk", "memory", "here"},
                                         Crossing{"FromDiskToDisk", "here", "disk"}),
                         [](const auto& each) { return std::string(each.param.name); });

// The move fails with the code and leaves everything as it is.
void expectRefusal(LinuxFileWorld& world, const std::string& from, const std::string& to,
                   std::int64_t code) {
  const std::string before = textOfTree(world.path(from));
  const auto around = namesIn(world.path("to"));
  EXPECT_EQ(moveCode(world, from, to), code) << from << " to " << to;
  EXPECT_EQ(textOfTree(world.path(from)), before) << from << " to " << to;
  EXPECT_EQ(namesIn(world.path("to")), around) << from << " to " << to;
}

TEST_P(VolumeCrossing, KeepsEverythingAboutATree) {
  play([](LinuxFileWorld& world) {
    const auto at = [&world](const std::string& name) { return world.path("from/tree/" + name); };
    for (const char* name : {"a/file", "a/b/other", "empty-file", "odd\n\xFF%2F name"})
      world.file("from/tree/" + std::string(name));
    write(at("a/file"), std::string(300'000, 'x') + "end");
    world.folder("from/tree/empty");
    world.link("from/tree/link", "a/file");
    world.link("from/tree/a/dangling", "/missing/\xFF");
    fs::create_hard_link(at("a/file"), at("a/b/same"));
    fs::create_hard_link(at("a/file"), at("same again"));
    fs::create_hard_link(at("a/b/other"), at("other again"));
    fs::create_hard_link(at("link"), at("link again"));
    EXPECT_EQ(mkfifo(at("pipe").c_str(), 0640), 0);
    EXPECT_EQ(setxattr(at("a/file").c_str(), "user.colour", "red\0", 4, 0), 0);
    EXPECT_EQ(setxattr(at("a").c_str(), "user.empty", "", 0, 0), 0);
    if (isRootOfTheMachine()) {
      EXPECT_EQ(mknod(at("device").c_str(), S_IFCHR | 0600, makedev(1, 3)), 0);
      EXPECT_EQ(chown(at("a/b/other").c_str(), 1234, 5678), 0);
      EXPECT_EQ(lchown(at("link").c_str(), 1234, 5678), 0);
      EXPECT_EQ(chown(at("empty").c_str(), 1234, 5678), 0);
    }
    EXPECT_EQ(chmod(at("a/b/other").c_str(), 06751), 0);
    EXPECT_EQ(chmod(at("a/b").c_str(), 01770), 0);
    for (const char* name : {"a/file", "link", "pipe", "empty", "a/b", "a"})
      setTimes(at(name), 1'000'000'000, 1'100'000'000);
    setTimes(world.path("from/tree"), 5, 6);
    const std::string before = textOfTree(world.path("from/tree"));
    setTimes(at("a/file"), 1'000'000'000, 1'100'000'000);
    EXPECT_EQ(moveCode(world, "from/tree", "to/moved"), 0);
    struct stat status {};
    EXPECT_EQ(stat(world.path("to/moved/a/file").c_str(), &status), 0);
    EXPECT_EQ(status.st_atim.tv_sec, 1'000'000'000);
    EXPECT_EQ(status.st_nlink, 3U);
    EXPECT_EQ(textOfTree(world.path("to/moved")), before);
    EXPECT_FALSE(fs::exists(world.path("from/tree")));
    for (const auto& item : fs::directory_iterator(world.path("to")))
      EXPECT_FALSE(item.path().filename().string().starts_with(".vornix")) << item.path();
  });
}

TEST_P(VolumeCrossing, KeepsHolesInFiles) {
  play([](LinuxFileWorld& world) {
    constexpr off_t kMegabyte = 1 << 20;
    const FileDescriptor file(
        open(world.path("from/sparse").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    EXPECT_EQ(pwrite(file.get(), "middle", 6, kMegabyte), 6);
    EXPECT_EQ(ftruncate(file.get(), 2 * kMegabyte), 0);
    const std::string before = textOfTree(world.path("from/sparse"));
    EXPECT_EQ(moveCode(world, "from/sparse", "to/sparse"), 0);
    EXPECT_EQ(textOfTree(world.path("to/sparse")), before);
    struct stat status {};
    EXPECT_EQ(stat(world.path("to/sparse").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, kMegabyte);
  });
}

TEST_P(VolumeCrossing, MovesLinksFilesAndSpecialItemsByThemselves) {
  play([](LinuxFileWorld& world) {
    world.file("from/file");
    world.link("from/link", "file");
    EXPECT_EQ(mkfifo(world.path("from/pipe").c_str(), 0600), 0);
    const FileDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    world.path("from/s").copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    for (const std::string name : {"link", "file", "pipe", "s"}) {
      const std::string before = textOfTree(world.path("from/" + name));
      EXPECT_EQ(moveCode(world, "from/" + name, "to/" + name), 0) << name;
      EXPECT_EQ(textOfTree(world.path("to/" + name)), before) << name;
      EXPECT_TRUE(textOfTree(world.path("from/" + name)).empty()) << name;
    }
  });
}

TEST_P(VolumeCrossing, FailsAsWithinOneVolume) {
  play([](LinuxFileWorld& world) {
    world.file("from/file");
    world.file("from/folder/file");
    world.file("to/file");
    world.folder("to/folder");
    world.link("to/dangling", "missing");
    expectRefusal(world, "from/file", "to/file", 516);
    expectRefusal(world, "from/folder", "to/folder", 516);
    expectRefusal(world, "from/file", "to/dangling", 516);
    expectRefusal(world, "from/missing", "to/file", 516);
    expectRefusal(world, "from/missing", "to/new", 4);
    expectRefusal(world, "from/file", "to/missing/new", 4);
    expectRefusal(world, "from/file", "to/file/new", 512);
    expectRefusal(world, "from/file", "to/new/", 512);
    expectRefusal(world, "from/file/x", "to/new", 512);
    expectRefusal(world, "from/file", "to/" + std::string(256, 'x'), 514);
    EXPECT_EQ(moveCode(world, "from/file", "to/" + std::string(255, 'x')), 0);
  });
}

TEST_P(VolumeCrossing, RefusesATreeInWhichAnotherVolumeIsMounted) {
  play([](LinuxFileWorld& world) {
    world.folder("from/tree/volume");
    world.file("from/tree/file");
    world.file("from/other/file");
    world.folder("from/other/bound");
    world.mount("from/tree/volume");
    world.bind("from/tree", "from/other/bound");
    world.file("from/tree/volume/file");
    expectRefusal(world, "from/tree", "to/new", 512);
    EXPECT_EQ(moveCode(world, "from/tree", "from/tree/volume/new"), 512);
    EXPECT_EQ(namesIn(world.path("from/tree/volume")), std::set<std::string>{"file"});
    expectRefusal(world, "from/tree/volume", "to/new", 512);
    expectRefusal(world, "from/other", "to/new", 512);
  });
}

TEST_P(VolumeCrossing, RefusesAnImmutableItemBeforeAnythingIsMoved) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root may set the flag";
  play([](LinuxFileWorld& world) {
    world.file("from/tree/a");
    world.file("from/tree/folder/locked");
    world.file("from/tree/z");
    NSFileManager& files = LinuxFileWorld::files();
    for (const char* name : {"from/tree/folder/locked", "from/tree/folder", "from/tree", "from"}) {
      EXPECT_TRUE(files.setAttributes({{"NSFileImmutable", true}}, world.path(name)));
      expectRefusal(world, "from/tree", "to/new", 513);
      EXPECT_TRUE(files.setAttributes({{"NSFileImmutable", false}}, world.path(name)));
    }
    EXPECT_EQ(moveCode(world, "from/tree", "to/new"), 0);
  });
}

class OrdinaryVolumeCrossing : public VolumeCrossing {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  }
  // Everything so far belongs to this account from now on.
  static void becomeOrdinary(LinuxFileWorld& world) {
    world.folder("unused");
    world.forbidChangesIn("unused");
  }
  static void asRoot(const std::function<void()>& change) {
    EXPECT_EQ(seteuid(0), 0);
    change();
    EXPECT_EQ(seteuid(65534), 0);
  }
};

INSTANTIATE_TEST_SUITE_P(, OrdinaryVolumeCrossing,
                         testing::Values(Crossing{"FromDiskToMemory", "here", "memory"},
                                         Crossing{"FromMemoryToDisk", "memory", "here"}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_P(OrdinaryVolumeCrossing, RefusesWhatItCouldNotRemoveBeforeAnythingIsMoved) {
  play([](LinuxFileWorld& world) {
    world.file("from/tree/file");
    world.file("from/tree/folder/file");
    becomeOrdinary(world);
    const auto expectRefusalWith = [&world](const char* name, mode_t permissions) {
      EXPECT_EQ(chmod(world.path(name).c_str(), permissions), 0);
      std::optional<NSError> error;
      EXPECT_FALSE(LinuxFileWorld::files().moveItemAtPath(world.path("from/tree"),
                                                          world.path("to/new"), &error));
      EXPECT_EQ(error->code, 513) << name;
      EXPECT_EQ(chmod(world.path(name).c_str(), 0700), 0);
      EXPECT_TRUE(fs::exists(world.path("from/tree/folder/file"))) << name;
      EXPECT_TRUE(fs::exists(world.path("from/tree/file"))) << name;
      EXPECT_TRUE(fs::is_empty(world.path("to"))) << name;
    };
    expectRefusalWith("from/tree/file", 0);
    expectRefusalWith("from/tree/folder", 0555);
    expectRefusalWith("from/tree/folder", 0);
    expectRefusalWith("from/tree", 0555);
    expectRefusalWith("from", 0555);
    EXPECT_EQ(moveCode(world, "from/tree", "to/new"), 0);
  });
}

TEST_P(OrdinaryVolumeCrossing, LeavesOtherPeoplesItemsInAStickyFolder) {
  play([](LinuxFileWorld& world) {
    world.file("from/foreign");
    becomeOrdinary(world);
    asRoot([&world] {
      EXPECT_EQ(chown(world.path("from").c_str(), 0, 0), 0);
      EXPECT_EQ(chmod(world.path("from").c_str(), 01777), 0);
      EXPECT_EQ(chown(world.path("from/foreign").c_str(), 0, 0), 0);
    });
    expectRefusal(world, "from/foreign", "to/new", 513);
  });
}

TEST_P(OrdinaryVolumeCrossing, GivesNobodyTheRightsOfAnOwnerThatIsNotKept) {
  play([](LinuxFileWorld& world) {
    world.file("from/program");
    becomeOrdinary(world);
    asRoot([&world] {
      EXPECT_EQ(chown(world.path("from/program").c_str(), 0, 0), 0);
      EXPECT_EQ(chmod(world.path("from/program").c_str(), 06755), 0);
    });
    EXPECT_EQ(moveCode(world, "from/program", "to/program"), 0);
    struct stat status {};
    EXPECT_EQ(stat(world.path("to/program").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 65534U);
    EXPECT_EQ(status.st_mode & 07777U, 0755U);
  });
}

}  // namespace
}  // namespace vornix::contract
