#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "platform/files/FileRemover.h"
#include "tests/contract/support/FailingCall.h"
#include "tests/contract/support/FileWorld.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/KindOfVolume.h"
#include "tests/contract/support/TreeText.h"
#include "tests/contract/support/Walks.h"
#include "tests/fakes/ScopedSharedLogger.h"

// What each operation answers, and leaves, when the disk fails it at any of its steps.
namespace vornix::contract {
namespace {

namespace stdfs = std::filesystem;

struct Fault {
  const char* step;
  long call;
  int error;
  // What the operation tells by then.
  std::int64_t code = 0;

  friend void PrintTo(const Fault& fault, std::ostream* stream) { *stream << fault.step; }
};

std::string stepOf(const testing::TestParamInfo<Fault>& row) {
  return row.param.step;
}

// Plays a part of a story where the call fails; its failed expectations are the story's.
void playWith(const Fault& fault, const std::function<void()>& part) {
  const ForkedProcess process([&] {
    failSystemCall(fault.call, fault.error);
    part();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  });
  EXPECT_EQ(process.awaitEnd(), 0);
}

using Operation = std::function<bool(NSFileManager&, std::optional<NSError>*)>;

void expectCode(std::int64_t code, const Operation& operation) {
  std::optional<NSError> error;
  EXPECT_FALSE(operation(LinuxFileWorld::files(), &error));
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->code, code) << error->description();
}

void makeTree(LinuxFileWorld& world, const std::string& name) {
  for (const char* item : {"/file", "/folder/file", "/folder/inner/file", "/other/file"}) {
    world.file(name + item);
    std::ofstream(world.path(name + item)) << std::string(100'000, 'x') << item;
  }
  world.link(name + "/link", "file");
}

TEST(FailingDisk, FoldersThatCannotBeReadAreTroublesOfAWalk) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    makeTree(world, "tree");
    world.enter("");
    playWith({"ReadingAFolder", SYS_getdents64, EIO}, [&world] {
      const auto walk = world.files().hierarchyAtPath("tree", {.noStatus = true});
      EXPECT_EQ(walk->read()->kind, HierarchyKind::folder);
      const HierarchyEntry* entry = walk->read();
      EXPECT_EQ(entry->kind, HierarchyKind::unreadableFolder);
      EXPECT_EQ(entry->error, EIO);
      EXPECT_EQ(walk->read(), nullptr);
      expectCode(256, [](auto& files, auto* error) {
        return files.contentsOfDirectoryAtPath("tree", error).has_value();
      });
    });
  });
}

TEST(FailingDisk, ItemsThatCannotBeLookedAtAreTroublesOfAWalk) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.file("tree/file");
    world.enter("");
    playWith({"LookingAtAnItem", SYS_newfstatat, EIO}, [&world] {
      const auto walk = world.files().hierarchyAtPath("tree", {});
      const HierarchyEntry* entry = walk->read();
      EXPECT_EQ(entry->kind, HierarchyKind::noStatus);
      EXPECT_EQ(entry->error, EIO);
      EXPECT_EQ(walk->read(), nullptr);
    });
  });
}

class FailingRemoval : public testing::TestWithParam<Fault> {};

INSTANTIATE_TEST_SUITE_P(
    FailingDisk, FailingRemoval,
    testing::Values(Fault{"ReadingAFolder", SYS_getdents64, EIO, 512},
                    Fault{"RemovingAName", SYS_unlinkat, EIO, 512},
                    Fault{"RemovingANameOnAFullDisk", SYS_unlinkat, ENOSPC, 640},
                    Fault{"RemovingANameBeyondAQuota", SYS_unlinkat, EDQUOT, 640}),
    stepOf);

TEST_P(FailingRemoval, TellsWhyAndLeavesTheTree) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    makeTree(world, "tree");
    const std::string before = textOfTree(world.path("tree"));
    playWith(GetParam(), [&world] {
      expectCode(GetParam().code, [&world](auto& files, auto* error) {
        return files.removeItemAtPath(world.path("tree"), error);
      });
    });
    EXPECT_EQ(textOfTree(world.path("tree")), before);
  });
}

class FailingSecureRemoval : public testing::TestWithParam<Fault> {};

INSTANTIATE_TEST_SUITE_P(FailingDisk, FailingSecureRemoval,
                         testing::Values(Fault{"ReadingAFolder", SYS_getdents64, EIO, -1},
                                         Fault{"RemovingAName", SYS_unlinkat, EIO, -1},
                                         Fault{"Writing", SYS_pwrite64, EIO, -1},
                                         Fault{"WritingBeyondAQuota", SYS_pwrite64, EDQUOT, -1},
                                         Fault{"FlushingAFile", SYS_fdatasync, EIO, -1},
                                         Fault{"Renaming", SYS_renameat2, EIO, -1},
                                         Fault{"GettingRandomBytesWhereThereAreNone", SYS_getrandom,
                                               ENOSYS, -1}),
                         stepOf);

void expectFailingSecureRemoval(const Fault& fault) {
  LinuxFileWorld::play([&fault](LinuxFileWorld& world) {
    makeTree(world, "tree");
    playWith(fault, [&] {
      const auto result = sharedFileRemover().removefile(world.path("tree"), 0x11);
      EXPECT_EQ(result, (RemovefileResult{.value = -1, .errorNumber = fault.error}));
    });
    for (const std::string item : {"/file", "/folder/file", "/folder/inner/file", "/other/file"})
      EXPECT_EQ(stdfs::file_size(world.path("tree") + item), 100'000 + item.size());
  });
}

TEST_P(FailingSecureRemoval, TellsWhyAndLeavesEveryName) {
  expectFailingSecureRemoval(GetParam());
}

TEST(FailingDisk, KeepsTheNamesOfFilesThatCannotBeAwaitedTogether) {
  const auto disk = folderOn(KindOfVolume::ext4);
  if (!disk) GTEST_SKIP() << "NOT TESTED: no folder to write to on ext4";
  setenv("TMPDIR", disk->c_str(), 1);
  expectFailingSecureRemoval({"AwaitingPages", SYS_sync_file_range, EIO, -1});
}

class FailingMove : public testing::TestWithParam<Fault> {};

INSTANTIATE_TEST_SUITE_P(
    FailingDisk, FailingMove,
    testing::Values(Fault{"ReadingAFolder", SYS_getdents64, EIO, 512},
                    Fault{"Reading", SYS_pread64, EIO, 512},
                    Fault{"Writing", SYS_pwrite64, EIO, 512},
                    Fault{"WritingOnAFullDisk", SYS_pwrite64, ENOSPC, 640},
                    Fault{"WritingBeyondAQuota", SYS_pwrite64, EDQUOT, 640},
                    Fault{"MakingAFolderBeyondAQuota", SYS_mkdirat, EDQUOT, 640},
                    Fault{"SettingALength", SYS_ftruncate, EIO, 512},
                    Fault{"SettingPermissions", SYS_fchmod, EIO, 512},
                    Fault{"SettingAnOwner", SYS_fchown, EIO, 512},
                    Fault{"ReadingALink", SYS_readlinkat, EIO, 512},
                    Fault{"MakingALinkBeyondAQuota", SYS_symlinkat, EDQUOT, 640},
                    Fault{"SettingTimes", SYS_utimensat, EIO, 512},
                    Fault{"ReadingAttributes", SYS_flistxattr, EIO, 512},
                    Fault{"FlushingAVolume", SYS_syncfs, EIO, 512},
                    Fault{"FlushingAVolumeOnAFullDisk", SYS_syncfs, ENOSPC, 640},
                    Fault{"Renaming", SYS_renameat2, EIO, 512},
                    Fault{"OpeningAnItem", SYS_openat2, EIO, 512},
                    Fault{"GettingRandomBytes", SYS_getrandom, EIO, 512}),
    stepOf);

// To another volume. `look` sees what there is afterwards, and how the source was before.
void playFailingMove(const Fault& fault,
                     const std::function<void(LinuxFileWorld&, const std::string&)>& look) {
  const auto outcome = LinuxFileWorld::play([&](LinuxFileWorld& world) {
    world.folder("to");
    world.mount("to");
    makeTree(world, "tree");
    const std::string before = textOfTree(world.path("tree"));
    playWith(fault, [&] {
      expectCode(fault.code, [&world](auto& files, auto* error) {
        return files.moveItemAtPath(world.path("tree"), world.path("to/tree"), error);
      });
    });
    EXPECT_EQ(textOfTree(world.path("tree")), before);
    look(world, before);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST_P(FailingMove, TellsWhyAndLeavesTheSourceWholeAndNothingElse) {
  playFailingMove(GetParam(), [](LinuxFileWorld& world, const std::string&) {
    EXPECT_FALSE(stdfs::exists(world.path("to/tree")));
    // The copy that was begun could not be removed either.
    const bool canClear = GetParam().call != SYS_getdents64 && GetParam().call != SYS_openat2;
    EXPECT_TRUE(!canClear || stdfs::is_empty(world.path("to")));
  });
}

class FailingEndOfAMove : public testing::TestWithParam<Fault> {};

// The folder around the destination, and the source's items.
INSTANTIATE_TEST_SUITE_P(FailingDisk, FailingEndOfAMove,
                         testing::Values(Fault{"FlushingAFolder", SYS_fsync, EIO, 512},
                                         Fault{"RemovingAName", SYS_unlinkat, EIO, 512}),
                         stepOf);

TEST_P(FailingEndOfAMove, LeavesBothSidesWhole) {
  playFailingMove(GetParam(), [](LinuxFileWorld& world, const std::string& before) {
    EXPECT_EQ(textOfTree(world.path("to/tree")), before);
  });
}

TEST(FailingDisk, SaysWithWhichExceptionAFileWasNotTruncated) {
  LinuxFileWorld::play([](LinuxFileWorld& world) {
    makeTree(world, "tree");
    playWith({"SettingALength", SYS_ftruncate, EIO}, [&world] {
      const fakes::ScopedSharedLogger logger;
      EXPECT_FALSE(truncateFileAtPath(world.files(), world.path("tree/file")));
      ASSERT_EQ(logger.messages(LogLevelError).size(), 1U);
      EXPECT_NE(
          logger.messages(LogLevelError).front().find("Failed to truncate file with exception"),
          std::string::npos);
    });
    EXPECT_GT(stdfs::file_size(world.path("tree/file")), 100'000U);
  });
}

}  // namespace
}  // namespace vornix::contract
