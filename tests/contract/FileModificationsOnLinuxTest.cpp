#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/TreeText.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix::contract {
namespace {

namespace stdfs = std::filesystem;

struct Place {
  const char* name;
  bool isInMemory;
  bool isOrdinaryUser;
};

const NSError kUntouchedError{.domain = "untouched"};

// On both kinds of volume, as root and as an ordinary user.
class FileModificationsOnLinux : public testing::TestWithParam<Place> {
 protected:
  // `fill` makes what the story needs.
  void play(const std::function<void(LinuxFileWorld&)>& fill,
            const std::function<void(LinuxFileWorld&, const fakes::ScopedSharedLogger&)>& story) {
    if (GetParam().isOrdinaryUser && geteuid() != 0)
      GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
    const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
      if (GetParam().isInMemory) world.mount("");
      fill(world);
      if (GetParam().isOrdinaryUser) {
        world.folder("unused");
        world.forbidChangesIn("unused");
      }
      story(world, fakes::ScopedSharedLogger());
    });
    if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
  }
  // Locks an item, whoever the story is told by.
  static void lock(LinuxFileWorld& world, const std::string& name) {
    const uid_t self = geteuid();
    EXPECT_EQ(seteuid(0), 0);
    EXPECT_TRUE(
        LinuxFileWorld::files().setAttributes({{"NSFileImmutable", true}}, world.path(name)));
    EXPECT_EQ(seteuid(self), 0);
  }
  static void unlock(LinuxFileWorld& world, const std::string& name) {
    EXPECT_EQ(seteuid(0), 0);
    EXPECT_TRUE(
        LinuxFileWorld::files().setAttributes({{"NSFileImmutable", false}}, world.path(name)));
  }
};

INSTANTIATE_TEST_SUITE_P(, FileModificationsOnLinux,
                         testing::Values(Place{"DiskAsRoot", false, false},
                                         Place{"MemoryAsRoot", true, false},
                                         Place{"DiskAsOrdinaryUser", false, true},
                                         Place{"MemoryAsOrdinaryUser", true, true}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_P(FileModificationsOnLinux, CountsAMissingPathAsRemoved) {
  play([](LinuxFileWorld& world) { world.folder("folder"); },
       [](LinuxFileWorld& world, const auto& logger) {
         std::optional<NSError> error = kUntouchedError;
         EXPECT_TRUE(removeFileAtPath(world.files(), world.path("folder/missing"), &error));
         EXPECT_TRUE(removeFileAtPath(world.files(), world.path("folder"), &error));
         EXPECT_TRUE(removeFileAtPath(world.files(), world.path("folder"), &error));
         EXPECT_EQ(error, kUntouchedError);
         EXPECT_TRUE(logger.messages().empty());
       });
}

TEST_P(FileModificationsOnLinux, UnlocksAnImmutableFolderAroundAsRootOnly) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root may set the flag";
  play([](LinuxFileWorld& world) { world.file("folder/file"); },
       [](LinuxFileWorld& world, const auto& logger) {
         const bool isRoot = geteuid() == 0;
         lock(world, "folder/file");
         lock(world, "folder");
         std::optional<NSError> error = kUntouchedError;
         EXPECT_EQ(removeFileAtPath(world.files(), world.path("folder/file"), &error), isRoot);
         EXPECT_EQ(error->code, 513);
         EXPECT_EQ(stdfs::exists(world.path("folder/file")), !isRoot);
         // Two items stay locked, each with its line.
         EXPECT_EQ(logger.messages().size(), isRoot ? 0U : 2U);
         EXPECT_TRUE(logger.messages(LogLevelDebug).empty());
         unlock(world, "folder");
         if (!isRoot) unlock(world, "folder/file");
       });
}

TEST_P(FileModificationsOnLinux, CountsWhatCannotBeLookedAtAsUnlocked) {
  play([](LinuxFileWorld& world) { world.file("file"); },
       [](LinuxFileWorld& world, const auto& logger) {
         for (const char* name : {"missing", "file/x"}) {
           logger.capture().clear();
           EXPECT_TRUE(tryToUnlockFileIfNeeded(world.files(), world.path(name))) << name;
           EXPECT_EQ(logger.messages(LogLevelError).size(), 1U) << name;
         }
       });
}

TEST_P(FileModificationsOnLinux, NeverOpensSpecialItemsToUnlockThem) {
  play(
      [](LinuxFileWorld& world) {
        EXPECT_EQ(mkfifo(world.path("pipe").c_str(), 0600), 0);
        world.link("link", "pipe");
        world.link("dangling", "missing");
      },
      [](LinuxFileWorld& world, const auto& logger) {
        for (const char* name : {"pipe", "link", "dangling"}) {
          EXPECT_TRUE(tryToUnlockFileIfNeeded(world.files(), world.path(name))) << name;
          EXPECT_TRUE(world.files().setAttributes({{"NSFileImmutable", false}}, world.path(name)));
        }
        EXPECT_FALSE(world.files().setAttributes({{"NSFileImmutable", true}}, world.path("pipe")));
        EXPECT_TRUE(logger.messages().empty());
      });
}

TEST_P(FileModificationsOnLinux, TruncatesFilesOnly) {
  play(
      [](LinuxFileWorld& world) {
        world.file("full");
        std::ofstream(world.path("full")) << "contents";
        world.file("empty");
        world.file("unwritable");
        world.folder("folder");
        world.link("link", "full");
        EXPECT_EQ(mkfifo(world.path("pipe").c_str(), 0600), 0);
      },
      [](LinuxFileWorld& world, const auto& logger) {
        EXPECT_EQ(chmod(world.path("unwritable").c_str(), 0400), 0);
        EXPECT_TRUE(truncateFileAtPath(world.files(), world.path("link")));
        EXPECT_EQ(stdfs::file_size(world.path("full")), 0U);
        EXPECT_TRUE(truncateFileAtPath(world.files(), world.path("empty")));
        EXPECT_EQ(truncateFileAtPath(world.files(), world.path("unwritable")), geteuid() == 0);
        for (const char* name : {"folder", "missing", "full/x", "pipe"})
          EXPECT_FALSE(truncateFileAtPath(world.files(), world.path(name))) << name;
        EXPECT_FALSE(truncateFileAtPath(world.files(), ""));
        EXPECT_TRUE(logger.messages().empty());
      });
}

TEST_P(FileModificationsOnLinux, EmptiesAFolderButForOneItemThatStays) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root may set the flag";
  play(
      [](LinuxFileWorld& world) {
        for (const char* name : {"folder/a", "folder/.b", "folder/c/stays/locked", "folder/\xFF\n"})
          world.file(name);
        world.link("folder/link", "../outside");
        world.file("outside/file");
      },
      [](LinuxFileWorld& world, const auto&) {
        lock(world, "folder/c/stays/locked");
        EXPECT_FALSE(removeContentsOfDirectoryAtPath(world.files(), world.path("folder")));
        EXPECT_EQ(std::distance(stdfs::directory_iterator(world.path("folder")), {}), 1);
        EXPECT_TRUE(stdfs::exists(world.path("folder/c/stays/locked")));
        EXPECT_TRUE(stdfs::exists(world.path("outside/file")));
        unlock(world, "folder/c/stays/locked");
        EXPECT_TRUE(removeContentsOfDirectoryAtPath(world.files(), world.path("folder")));
        EXPECT_TRUE(stdfs::is_empty(world.path("folder")));
      });
}

TEST_P(FileModificationsOnLinux, MovesIntoFoldersThatItMakes) {
  play([](LinuxFileWorld& world) { world.file("a/b/file"); },
       [](LinuxFileWorld& world, const auto& logger) {
         std::optional<NSError> error = kUntouchedError;
         const std::string before = textOfTree(world.path("a/b/file"));
         EXPECT_TRUE(advancedMoveItemAtPath(world.files(), world.path("a/b/file"),
                                            world.path("a/b"), &error));
         EXPECT_EQ(logger.messages(LogLevelDebug).size(), 1U);
         EXPECT_TRUE(advancedMoveItemAtPath(world.files(), world.path("a/b/file"),
                                            world.path("x/y/new"), &error));
         EXPECT_EQ(textOfTree(world.path("x/y/new")), before);
         EXPECT_TRUE(moveItemAtPath(world.files(), world.path("x/y/new"), world.path("z/z/new"),
                                    true, false, &error));
         EXPECT_EQ(error, kUntouchedError);
         world.file("other");
         EXPECT_FALSE(moveItemAtPath(world.files(), world.path("other"), world.path("z/z/new"),
                                     false, false, &error));
         EXPECT_EQ(error->code, 516);
         EXPECT_TRUE(moveItemAtPath(world.files(), world.path("other"), world.path("z/z/new"),
                                    false, true, &error));
         EXPECT_FALSE(stdfs::exists(world.path("other")));
       });
}

TEST_P(FileModificationsOnLinux, UsesTheTrashForAnEmptyDestination) {
  play(
      [](LinuxFileWorld& world) {
        world.file("folder/file");
        world.folder("home");
      },
      [](LinuxFileWorld& world, const auto&) {
        setenv("HOME", world.path("home").c_str(), 1);
        unsetenv("XDG_DATA_HOME");
        std::optional<NSError> error = kUntouchedError;
        EXPECT_TRUE(advancedMoveItemAtPath(world.files(), world.path("folder/file"), "", &error));
        EXPECT_EQ(error, kUntouchedError);
        EXPECT_FALSE(stdfs::exists(world.path("folder/file")));
        EXPECT_TRUE(stdfs::exists(world.path("home/.local/share/Trash/files/file")));
      });
}

}  // namespace
}  // namespace vornix::contract
