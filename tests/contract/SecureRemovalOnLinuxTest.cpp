#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/OnVolume.h"

// Secure removal as the programs of the family ask for it.
namespace vornix::contract {
namespace {

void setFlags(const std::string& path, int flags) {
  const FileDescriptor item(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(ioctl(item.get(), FS_IOC_SETFLAGS, &flags), 0) << path;
}

// 0 for a success, which must leave the error alone.
std::int64_t codeOfSecureRemoval(const std::string& path) {
  std::optional<NSError> error;
  const NSBundle texts("/nowhere", {"en"});
  const bool isRemoved = securelyRemoveFileAtPath(NSFileManager::defaultManager(), path, &error,
                                                  sharedFileRemover(), texts);
  EXPECT_EQ(isRemoved, !error.has_value()) << path;
  EXPECT_EQ(isRemoved, !std::filesystem::exists(std::filesystem::symlink_status(path))) << path;
  if (!error) return 0;
  EXPECT_EQ(error->domain, "com.orvane.Vornix.SecureRemoveErrorDomain");
  EXPECT_EQ(error->localizedDescription, "ErrorDescRemoving_GenericError");
  EXPECT_EQ(error->filePath, "");
  EXPECT_EQ(error->underlyingErrno, 0);
  return error->code;
}

class SecureRemovalByPath : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(SecureRemovalByPath);

TEST_P(SecureRemovalByPath, RemovesAFolderWithItsContents) {
  play([](LinuxFileWorld& world) {
    world.file("here/folder/inner/file");
    world.link("here/folder/link", "inner");
    EXPECT_EQ(codeOfSecureRemoval(world.path("here/folder")), 0);
  });
}

TEST_P(SecureRemovalByPath, FailsForWhatDoesNotExist) {
  play([](LinuxFileWorld& world) {
    std::optional<NSError> error;
    EXPECT_FALSE(securelyRemoveFileAtPath(NSFileManager::defaultManager(),
                                          world.path("here/missing"), &error));
    EXPECT_EQ(error->code, -1);
    EXPECT_FALSE(securelyRemoveFileAtPath(NSFileManager::defaultManager(), ""));
  });
}

TEST_P(SecureRemovalByPath, UnlocksTheItemButNeitherItsFolderNorItsContents) {
  if (!keepsFlags(GetParam())) GTEST_SKIP() << kMayNotFlag;
  play([](LinuxFileWorld& world) {
    for (const char* name : {"here/alone", "here/locked/file", "here/full/inner"}) world.file(name);
    for (const char* name : {"here/alone", "here/locked", "here/full/inner"})
      setFlags(world.path(name), FS_IMMUTABLE_FL);
    EXPECT_EQ(codeOfSecureRemoval(world.path("here/alone")), 0);
    EXPECT_EQ(codeOfSecureRemoval(world.path("here/locked/file")), -1);
    EXPECT_EQ(codeOfSecureRemoval(world.path("here/full")), -1);
    for (const char* name : {"here/locked", "here/full/inner"}) setFlags(world.path(name), 0);
    for (const char* name : {"here/locked", "here/full"})
      EXPECT_EQ(codeOfSecureRemoval(world.path(name)), 0);
  });
}

TEST_P(SecureRemovalByPath, FailsForAnotherPersonWhoMayNotUnlock) {
  if (!keepsFlags(GetParam())) GTEST_SKIP() << kMayNotFlag;
  play([](LinuxFileWorld& world) {
    world.file("here/locked");
    world.file("here/others/file");
    world.forbidChangesIn("here/others");
    EXPECT_EQ(seteuid(0), 0);
    setFlags(world.path("here/locked"), FS_IMMUTABLE_FL);
    EXPECT_EQ(seteuid(65534), 0);
    EXPECT_EQ(codeOfSecureRemoval(world.path("here/locked")), -1);
    EXPECT_EQ(codeOfSecureRemoval(world.path("here/others/file")), -1);
    EXPECT_EQ(seteuid(0), 0);
    setFlags(world.path("here/locked"), 0);
  });
}

}  // namespace
}  // namespace vornix::contract
