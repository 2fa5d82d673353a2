#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/files/FileRemover.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/ForkedProcess.h"
#include "tests/contract/support/OnVolume.h"

// Secure removal on disks and trees that make trouble.
namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

int errorOfSecureRemoval(const std::string& path) {
  return sharedFileRemover().removefile(path, 0x11).errorNumber;
}

void writeBytes(const std::string& path, const std::string& bytes) {
  EXPECT_TRUE((std::ofstream(path, std::ios::binary) << bytes).good()) << path;
}

std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class SecureRemovalTrouble : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(SecureRemovalTrouble);

TEST_P(SecureRemovalTrouble, GoesOnWhenDescriptorsRunOut) {
  play([](LinuxFileWorld& world) {
    for (int number = 0; number < 400; ++number)
      world.file("here/doomed/" + std::to_string(number % 40) + "/" + std::to_string(number));
    for (int number = 0; number < 400; ++number)
      writeBytes(world.path("here/doomed/file " + std::to_string(number)), "contents");
    const rlimit few{.rlim_cur = 24, .rlim_max = 24};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    EXPECT_EQ(errorOfSecureRemoval(world.path("here/doomed")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/doomed")));
  });
}

TEST_P(SecureRemovalTrouble, FailsWhereALimitOnTheSizeOfFilesForbidsToOverwrite) {
  play([](LinuxFileWorld& world) {
    world.folder("here/doomed");
    writeBytes(world.path("here/doomed/large"), std::string(100'000, 'M'));
    ASSERT_EQ(std::signal(SIGXFSZ, SIG_DFL), SIG_DFL);
    const rlimit small{.rlim_cur = 4096, .rlim_max = RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    for (const char* name : {"here/doomed", "here/doomed/large"}) {
      EXPECT_EQ(sharedFileRemover().removefile(world.path(name), 0x11),
                (RemovefileResult{.value = -1, .errorNumber = EFBIG}));
      EXPECT_EQ(fs::file_size(world.path("here/doomed/large")), 100'000U);
    }
  });
}

TEST_P(SecureRemovalTrouble, TakesWhatAnotherProcessRemovesMeanwhileForRemoved) {
  play([](LinuxFileWorld& world) {
    const std::string both = world.path("here/both");
    for (int round = 0; round < 20; ++round) {
      for (int number = 0; number < 100; ++number)
        world.file("here/both/" + std::to_string(number % 10) + "/" + std::to_string(number));
      const ForkedProcess other([&both] {
        for (const char* folder : {"/3", "/7", "/9", "/1", "/0"}) {
          std::error_code raced;
          fs::remove_all(both + folder, raced);
        }
        _exit(0);
      });
      EXPECT_EQ(errorOfSecureRemoval(both), 0);
      EXPECT_EQ(other.awaitEnd(), 0);
      EXPECT_FALSE(fs::exists(both));
    }
  });
}

TEST(LinuxSecureRemoval, LeavesAloneWhatIsMountedBelowAFolder) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    for (const char* name : {"one/volume", "two/bound", "three"}) world.folder(name);
    world.file("kept/file");
    world.file("file");
    world.file("three/bound-file");
    world.mount("one/volume");
    for (const char* name : {"one/volume/file", "kept/file", "file"}) {
      world.file(name);
      writeBytes(world.path(name), "contents");
    }
    world.bind("kept", "two/bound");
    world.bind("file", "three/bound-file");
    for (const char* name : {"one", "one/volume", "two", "two/bound", "three", "three/bound-file"})
      EXPECT_EQ(errorOfSecureRemoval(world.path(name)), EBUSY) << name;
    for (const char* name : {"one/volume/file", "two/bound/file", "kept/file", "file"})
      EXPECT_EQ(bytesOf(world.path(name)), "contents") << name;
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

TEST(LinuxSecureRemoval, ChangesNothingOnAReadOnlyVolume) {
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    world.folder("volume");
    world.mount("volume");
    world.file("volume/folder/file");
    writeBytes(world.path("volume/folder/file"), "contents");
    world.link("volume/link", "folder");
    world.makeReadOnly("volume");
    for (const char* name : {"volume/folder/file", "volume/folder", "volume/link"})
      EXPECT_EQ(errorOfSecureRemoval(world.path(name)), EROFS) << name;
    EXPECT_EQ(bytesOf(world.path("volume/folder/file")), "contents");
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMount;
}

// An ext4 whose bytes can be looked at, in memory of a given size. Takes root.
class Disk {
 public:
  Disk(LinuxFileWorld& world, const std::string& memory)
      : image_(world.path("memory/image")), folder_(world.path("disk")) {
    world.folder("memory");
    world.folder("disk");
    world.mountSmall("memory", memory);
    const std::string make = "truncate -s 32M " + image_ + " && mkfs.ext4 -q -F -b 4096 " + image_;
    const std::string attach = "mount -o loop " + image_ + " " + folder_;
    // NOLINTNEXTLINE(cert-env33-c,concurrency-mt-unsafe): a test's own words, on one thread.
    isMounted_ = std::system((make + " && " + attach).c_str()) == 0;
  }

  [[nodiscard]] bool isMounted() const { return isMounted_; }
  [[nodiscard]] const std::string& image() const { return image_; }
  // All that was changed.
  void write() const {
    const FileDescriptor folder(open(folder_.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(syncfs(folder.get()), 0);
  }
  [[nodiscard]] std::size_t copiesOf(const std::string& mark) const {
    const std::string bytes = bytesOf(image_);
    std::size_t count = 0;
    for (auto at = bytes.find(mark); at != std::string::npos; at = bytes.find(mark, at + 1))
      ++count;
    return count;
  }

 private:
  std::string image_;
  std::string folder_;
  bool isMounted_ = false;
};

TEST(LinuxSecureRemoval, LeavesNothingOfAFilesContentsOnTheDiskOnceItAnswers) {
  if (geteuid() != 0) GTEST_SKIP() << kMayNotMountDisks;
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    const Disk disk(world, "size=64m");
    ASSERT_TRUE(disk.isMounted());
    // Kept together here only when the test reads it from its own memory.
    const std::string mark = std::string("a mark that stands ") + "nowhere else";
    std::string contents;
    while (contents.size() < 100'000) contents += mark;
    for (int number = 0; number < 120; ++number) {
      const std::string name = "disk/doomed/" + std::to_string(number % 7);
      world.folder(name);
      writeBytes(world.path(name + "/" + std::to_string(number)),
                 contents.substr(0, static_cast<std::size_t>(number) * 500));
    }
    disk.write();
    EXPECT_GT(disk.copiesOf(mark), 1000U);
    EXPECT_EQ(errorOfSecureRemoval(world.path("disk/doomed")), 0);
    EXPECT_EQ(disk.copiesOf(mark), 0U);
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMountDisks;
}

TEST(LinuxSecureRemoval, KeepsAFileWhoseContentsCouldNotBeOverwrittenOnTheDisk) {
  if (geteuid() != 0) GTEST_SKIP() << kMayNotMountDisks;
  const auto outcome = LinuxFileWorld::play([](LinuxFileWorld& world) {
    const Disk disk(world, "size=24m");
    ASSERT_TRUE(disk.isMounted());
    const std::string mark(1U << 20U, 'M');
    world.folder("disk/doomed");
    for (int number = 0; number < 30; ++number)
      writeBytes(world.path("disk/doomed/" + std::to_string(number)), "contents");
    writeBytes(world.path("disk/doomed/bad"), mark);
    disk.write();
    const std::string bytes = bytesOf(disk.image());
    ASSERT_NE(bytes.find(mark), std::string::npos);
    {
      // The disk forgets the file's blocks, and then has no room to take others for them.
      const FileDescriptor image(open(disk.image().c_str(), O_RDWR | O_CLOEXEC));
      ASSERT_EQ(fallocate(image.get(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
                          static_cast<off_t>(bytes.find(mark)), static_cast<off_t>(mark.size())),
                0);
      std::ofstream filler(world.path("memory/filler"), std::ios::binary);
      while (filler << std::string(4096, 'f') << std::flush) {
      }
    }
    EXPECT_NE(errorOfSecureRemoval(world.path("disk/doomed")), 0);
    EXPECT_TRUE(fs::exists(world.path("disk/doomed/bad")));
    EXPECT_NE(errorOfSecureRemoval(world.path("disk/doomed/bad")), 0);
    EXPECT_TRUE(fs::exists(world.path("disk/doomed/bad")));
  });
  if (outcome == FakeFileWorld::Outcome::mayNotMount) GTEST_SKIP() << kMayNotMountDisks;
}

}  // namespace
}  // namespace vornix::contract
