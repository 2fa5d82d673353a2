#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <string>

#include "platform/files/FileAttributes.h"
#include "platform/files/MetadataIndex.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/KindOfVolume.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {
namespace {

std::string namesOf(const std::string& path) {
  std::string names;
  EXPECT_EQ(sharedFileAttributes().extendedAttributeNames(path, names), 0) << path;
  return names;
}

class LinuxFileAttributes : public testing::TestWithParam<KindOfVolume> {};

INSTANTIATE_TEST_SUITE_P(, LinuxFileAttributes,
                         testing::Values(KindOfVolume::ext4, KindOfVolume::tmpfs),
                         [](const auto& kind) { return nameOf(kind.param); });

TEST_P(LinuxFileAttributes, TellWhenAFileWasMadeWhateverItsOtherTimes) {
  VORNIX_NEED_VOLUME(GetParam());
  const tests::ScratchFolder folder(*folderOn(GetParam()));
  // The kernel stamps files with a clock that is up to a tick behind.
  const std::time_t before = std::time(nullptr) - 1;
  const std::string path = folder.write("file", "x");
  const std::time_t after = std::time(nullptr);
  const timespec both[] = {{.tv_sec = 7, .tv_nsec = 0}, {.tv_sec = 8, .tv_nsec = 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), both, 0), 0);
  FileDetails details;
  ASSERT_EQ(sharedFileAttributes().details(path, details), 0);
  EXPECT_GE(details.birthTime, before);
  EXPECT_LE(details.birthTime, after);
  EXPECT_EQ(details.accessTime, 7);
  EXPECT_EQ(details.modificationTime, 8);
}

TEST_P(LinuxFileAttributes, KeepTheNameSpaceOfAttributesThatAreNotThePersonsOwn) {
  VORNIX_NEED_VOLUME(GetParam());
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root may set trusted attributes";
  const tests::ScratchFolder folder(*folderOn(GetParam()));
  const std::string path = folder.write("file", "x");
  ASSERT_EQ(setxattr(path.c_str(), "trusted.mark", "v", 1, 0), 0);
  EXPECT_NE(namesOf(path).find(std::string("trusted.mark") + '\0'), std::string::npos);
}

TEST_P(LinuxFileAttributes, NameTheAttributesOfALinkItself) {
  VORNIX_NEED_VOLUME(GetParam());
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root may give attributes to links";
  const tests::ScratchFolder folder(*folderOn(GetParam()));
  const std::string target = folder.write("file", "x");
  ASSERT_EQ(symlink("file", folder.path("link").c_str()), 0);
  ASSERT_EQ(lsetxattr(folder.path("link").c_str(), "trusted.link", "v", 1, 0), 0);
  EXPECT_NE(namesOf(folder.path("link")).find("trusted.link"), std::string::npos);
  EXPECT_EQ(namesOf(target).find("trusted.link"), std::string::npos);
}

TEST_P(LinuxFileAttributes, NameAsManyAttributesAsAFileCanBear) {
  VORNIX_NEED_VOLUME(GetParam());
  const tests::ScratchFolder folder(*folderOn(GetParam()));
  const std::string path = folder.write("file", "x");
  int count = 0;
  while (count < 100 &&
         setxattr(path.c_str(), ("user.name-" + std::to_string(count)).c_str(), "", 0, 0) == 0)
    ++count;
  EXPECT_GT(count, 20);
  const std::string names = namesOf(path);
  for (int number = 0; number < count; ++number)
    EXPECT_NE(names.find("name-" + std::to_string(number) + '\0'), std::string::npos) << number;
  EXPECT_EQ(names.find("user."), std::string::npos);
}

TEST_P(LinuxFileAttributes, AreNotToldToThoseWhoMayNotReachTheItem) {
  VORNIX_NEED_VOLUME(GetParam());
  const tests::ScratchFolder folder(*folderOn(GetParam()));
  const std::string path = folder.write("closed/file", "x");
  ASSERT_EQ(chmod(folder.path("closed").c_str(), 0600), 0);
  ForkedProcess nobody([&path] {
    if (geteuid() == 0 && setuid(65534) != 0) _exit(3);
    FileDetails details;
    std::string names;
    const auto& attributes = sharedFileAttributes();
    const bool refused = attributes.details(path, details) == EACCES &&
                         attributes.extendedAttributeNames(path, names) == EACCES;
    _exit(refused ? 0 : 1);
  });
  EXPECT_EQ(nobody.awaitEnd(), 0);
  EXPECT_EQ(chmod(folder.path("closed").c_str(), 0700), 0);
}

TEST(LinuxFileAttributesOfTheSystem, AreZeroWhereTheFileSystemKeepsNone) {
  FileDetails details;
  ASSERT_EQ(sharedFileAttributes().details("/proc/self/status", details), 0);
  EXPECT_EQ(details.birthTime, 0);
  EXPECT_EQ(details.flags, 0U);
}

TEST(LinuxMetadataIndex, KnowsNothing) {
  EXPECT_EQ(sharedMetadataIndex().itemAtPath("/"), std::nullopt);
}

}  // namespace
}  // namespace vornix::contract
