#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/files/FileRemover.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/contract/support/OnVolume.h"
#include "tests/contract/support/Witness.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kSecurely = 0x11;

int errorOfRemoving(const std::string& path, std::uint32_t flags = kSecurely) {
  const auto result = sharedFileRemover().removefile(path, flags);
  EXPECT_EQ(result.value, result.errorNumber == 0 ? 0 : -1);
  return result.errorNumber;
}

void write(const std::string& path, const std::string& contents) {
  EXPECT_TRUE((std::ofstream(path, std::ios::binary) << contents).good()) << path;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// No byte more often than chance has it, and none of the mark that stood there.
void expectRandom(const std::string& bytes, char mark) {
  const auto marks = static_cast<std::size_t>(std::ranges::count(bytes, mark));
  EXPECT_LT(marks, bytes.size() / 64 + 8);
}

class SecureRemovalOn : public OnVolume {};
VORNIX_ON_EVERY_VOLUME(SecureRemovalOn);

TEST_P(SecureRemovalOn, OverwritesWhatFilesOfAnySizeHoldAndKeepsTheirLength) {
  play([](LinuxFileWorld& world) {
    std::vector<std::size_t> sizes{0, 1, 7, 8, 9, 4095, 4096, 4097, 100'000, 300'001, 20'000'003};
    std::vector<Witness> witnesses;
    world.folder("here/doomed/inner");
    for (const std::size_t size : sizes) {
      const std::string path = world.path("here/doomed/inner/" + std::to_string(size));
      write(path, std::string(size, 'M'));
      witnesses.emplace_back(path);
    }
    EXPECT_EQ(errorOfRemoving(world.path("here/doomed")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/doomed")));
    for (std::size_t index = 0; index < sizes.size(); ++index) {
      EXPECT_EQ(witnesses[index].status().st_nlink, 0U);
      EXPECT_EQ(witnesses[index].contents().size(), sizes[index]);
      expectRandom(witnesses[index].contents(), 'M');
    }
    EXPECT_NE(witnesses[9].contents().substr(0, 100'000), witnesses[8].contents());
  });
}

TEST_P(SecureRemovalOn, LeavesFilesAsTheyWereWhereItShallOnlyRemove) {
  play([](LinuxFileWorld& world) {
    world.folder("here/doomed");
    write(world.path("here/doomed/file"), "kept");
    const Witness witness(world.path("here/doomed/file"));
    EXPECT_EQ(errorOfRemoving(world.path("here/doomed"), 0x01), 0);
    EXPECT_EQ(witness.status().st_nlink, 0U);
    EXPECT_EQ(witness.contents(), "kept");
  });
}

TEST_P(SecureRemovalOn, OverwritesTheDataOfAHugeFileAndNotItsHoles) {
  play([](LinuxFileWorld& world) {
    const std::string path = world.path("here/sparse");
    constexpr off_t kHuge = off_t{1} << 40U;
    const std::string data(100'000, 'M');
    {
      const FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
      ASSERT_EQ(ftruncate(file.get(), kHuge), 0);
      for (const off_t at : {off_t{1'000'000}, kHuge / 2, kHuge - 100'000})
        ASSERT_EQ(pwrite(file.get(), data.data(), data.size(), at), 100'000);
      ASSERT_EQ(fsync(file.get()), 0);
    }
    const Witness witness(path);
    const auto blocks = witness.status().st_blocks;
    EXPECT_EQ(errorOfRemoving(path), 0);
    EXPECT_EQ(witness.status().st_blocks, blocks);
    EXPECT_EQ(witness.status().st_size, kHuge);
    for (const off_t at : {off_t{1'000'000}, kHuge / 2, kHuge - 100'000})
      expectRandom(witness.contents(data.size(), at), 'M');
  });
}

TEST_P(SecureRemovalOn, LeavesWhatOtherNamesOfAFileStillHold) {
  play([](LinuxFileWorld& world) {
    world.folder("here/doomed");
    write(world.path("here/other-name"), "shared");
    fs::create_hard_link(world.path("here/other-name"), world.path("here/doomed/one"));
    fs::create_hard_link(world.path("here/other-name"), world.path("here/doomed/two"));
    EXPECT_EQ(errorOfRemoving(world.path("here/doomed")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/doomed")));
    EXPECT_EQ(contentsOf(world.path("here/other-name")), "shared");
    const Witness witness(world.path("here/other-name"));
    EXPECT_EQ(witness.status().st_nlink, 1U);
    EXPECT_EQ(errorOfRemoving(world.path("here/other-name")), 0);
    EXPECT_NE(witness.contents(), "shared");
  });
}

TEST_P(SecureRemovalOn, OverwritesAFileWithItsLastNameWhereTheyAllGo) {
  play([](LinuxFileWorld& world) {
    const std::vector<std::vector<std::string>> rows{
        {"one", "two"},
        {"one", "two", "three", "inner/four"},
        {"inner/one", "other/two"},
        {"a/b/c/one", "a/two", "three"},
    };
    for (const auto& names : rows) {
      for (const std::string& name : names) {
        world.folder(fs::path("here/doomed/" + name).parent_path());
        const std::string path = world.path("here/doomed/" + name);
        if (name == names.front()) {
          write(path, "what must not stay on the disk");
        } else {
          fs::create_hard_link(world.path("here/doomed/" + names.front()), path);
        }
        write(path + " beside", "something else");
      }
      const Witness witness(world.path("here/doomed/" + names.back()));
      ASSERT_EQ(witness.status().st_nlink, names.size());
      EXPECT_EQ(errorOfRemoving(world.path("here/doomed")), 0);
      EXPECT_FALSE(fs::exists(world.path("here/doomed")));
      EXPECT_EQ(witness.status().st_nlink, 0U);
      EXPECT_EQ(witness.contents().size(), 30U);
      EXPECT_EQ(witness.contents().find("must"), std::string::npos) << names.back();
    }
  });
}

TEST_P(SecureRemovalOn, NeedsToWriteToTheLastNameOfAFile) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  play([](LinuxFileWorld& world) {
    world.folder("here/doomed");
    write(world.path("here/doomed/one"), "contents");
    fs::create_hard_link(world.path("here/doomed/one"), world.path("here/doomed/two"));
    world.folder("here/others");
    world.forbidChangesIn("here/others");
    ASSERT_EQ(chmod(world.path("here/doomed/one").c_str(), 0400), 0);
    const Witness witness(world.path("here/doomed/one"));
    EXPECT_EQ(errorOfRemoving(world.path("here/doomed")), EACCES);
    EXPECT_EQ(witness.status().st_nlink, 1U);
    EXPECT_EQ(witness.contents(), "contents");
  });
}

TEST_P(SecureRemovalOn, RemovesLinksAndSpecialFilesWithoutOpeningThem) {
  play([](LinuxFileWorld& world) {
    world.folder("here/doomed");
    write(world.path("here/target"), "kept");
    world.link("here/doomed/link", world.path("here/target"));
    world.link("here/doomed/dangling", "missing");
    ASSERT_EQ(mkfifo(world.path("here/doomed/pipe").c_str(), 0600), 0);
    const FileDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    world.path("here/doomed/s").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    if (isRootOfTheMachine()) {
      // Writing to it would say that the disk is full.
      ASSERT_EQ(mknod(world.path("here/doomed/full").c_str(), S_IFCHR | 0600, makedev(1, 7)), 0);
    }
    EXPECT_EQ(errorOfRemoving(world.path("here/doomed")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/doomed")));
    EXPECT_EQ(contentsOf(world.path("here/target")), "kept");
    ASSERT_EQ(mkfifo(world.path("here/pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOfRemoving(world.path("here/pipe")), 0);
    EXPECT_FALSE(fs::exists(world.path("here/pipe")));
  });
}

// What the folder told, in order: "from OLD", "to NEW", "gone NAME".
std::vector<std::string> eventsOf(int watcher) {
  std::vector<std::string> events;
  alignas(inotify_event) char buffer[65536];
  const ssize_t length = read(watcher, buffer, sizeof buffer);
  for (ssize_t at = 0; at < length;) {
    const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
    const char* what = (event->mask & IN_MOVED_FROM) != 0 ? "from "
                       : (event->mask & IN_MOVED_TO) != 0 ? "to "
                                                          : "gone ";
    events.push_back(what + std::string(event->name));
    at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
  }
  return events;
}

TEST_P(SecureRemovalOn, GivesEveryItemARandomNameBeforeItGoes) {
  play([](LinuxFileWorld& world) {
    world.folder("here/folder");
    world.file("here/file");
    world.file("here/other-name");
    fs::create_hard_link(world.path("here/other-name"), world.path("here/hard-link"));
    world.link("here/link", "nothing");
    const FileDescriptor watcher(inotify_init1(IN_CLOEXEC));
    ASSERT_GE(inotify_add_watch(watcher.get(), world.path("here").c_str(),
                                IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE),
              0);
    std::vector<std::string> names;
    for (const char* name : {"folder", "file", "hard-link", "link"}) {
      EXPECT_EQ(errorOfRemoving(world.path("here/" + std::string(name))), 0);
      const auto events = eventsOf(watcher.get());
      ASSERT_EQ(events.size(), 3U) << name;
      EXPECT_EQ(events[0], "from " + std::string(name));
      names.push_back(events[1].substr(3));
      EXPECT_EQ(events[2], "gone " + names.back());
      EXPECT_EQ(names.back().size(), 14U);
      EXPECT_TRUE(std::ranges::all_of(names.back(), [](unsigned char c) {
        return std::isalnum(c) != 0;
      })) << names.back();
    }
    std::ranges::sort(names);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
  });
}

// In the order in which the folder tells them.
std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& item : fs::directory_iterator(folder)) names.push_back(item.path().filename());
  return names;
}

TEST_P(SecureRemovalOn, EndsAtTheFirstFailureAndTouchesNothingBehindIt) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  play([](LinuxFileWorld& world) {
    constexpr int kFiles = 300;
    for (int number = 0; number < kFiles; ++number)
      write((world.folder("here/doomed"), world.path("here/doomed/" + std::to_string(number))),
            "contents");
    world.folder("here/others");
    world.forbidChangesIn("here/others");
    auto names = namesIn(world.path("here/doomed"));
    ASSERT_EQ(names.size(), kFiles);
    const auto failing = names.begin() + kFiles * 2 / 3;
    ASSERT_EQ(chmod(world.path("here/doomed/" + *failing).c_str(), 0400), 0);
    EXPECT_EQ(errorOfRemoving(world.path("here/doomed")), EACCES);
    names.erase(names.begin(), failing);
    EXPECT_THAT(namesIn(world.path("here/doomed")), testing::UnorderedElementsAreArray(names));
    for (const std::string& name : names)
      EXPECT_EQ(contentsOf(world.path("here/doomed/" + name)), "contents") << name;
  });
}

TEST_P(SecureRemovalOn, FailsForWhatAnotherPersonMayNotWriteOrRead) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  play([](LinuxFileWorld& world) {
    world.file("here/read-only");
    world.file("here/unreadable/file");
    world.file("here/locked/file");
    write(world.path("here/locked/file"), "contents");
    world.file("here/several");
    fs::create_hard_link(world.path("here/several"), world.path("here/names"));
    world.forbidChangesIn("here/locked");
    for (const char* name : {"here/read-only", "here/several"})
      EXPECT_EQ(chmod(world.path(name).c_str(), 0400), 0);
    EXPECT_EQ(chmod(world.path("here/unreadable").c_str(), 0300), 0);
    EXPECT_EQ(errorOfRemoving(world.path("here/read-only")), EACCES);
    EXPECT_EQ(errorOfRemoving(world.path("here/unreadable")), EACCES);
    EXPECT_EQ(errorOfRemoving(world.path("here/locked")), EACCES);
    // Nothing has to be written to one that has other names.
    EXPECT_EQ(errorOfRemoving(world.path("here/several")), 0);
    EXPECT_EQ(chmod(world.path("here/unreadable").c_str(), 0700), 0);
    for (const char* name : {"here/read-only", "here/unreadable/file", "here/locked/file"})
      EXPECT_TRUE(fs::exists(world.path(name))) << name;
  });
}

TEST_P(SecureRemovalOn, LeavesOtherPeoplesItemsInAStickyFolder) {
  if (geteuid() != 0) GTEST_SKIP() << "NOT TESTED: only root can become somebody else";
  play([](LinuxFileWorld& world) {
    world.file("here/sticky/foreign");
    world.folder("here/others");
    world.forbidChangesIn("here/others");
    EXPECT_EQ(seteuid(0), 0);
    world.file("here/sticky/own");
    EXPECT_EQ(chown(world.path("here/sticky").c_str(), 0, 0), 0);
    EXPECT_EQ(chown(world.path("here/sticky/foreign").c_str(), 0, 0), 0);
    EXPECT_EQ(chmod(world.path("here/sticky/foreign").c_str(), 0666), 0);
    EXPECT_EQ(chown(world.path("here/sticky/own").c_str(), 65534, 65534), 0);
    EXPECT_EQ(chmod(world.path("here/sticky").c_str(), 01777), 0);
    EXPECT_EQ(seteuid(65534), 0);
    EXPECT_EQ(errorOfRemoving(world.path("here/sticky/foreign")), EPERM);
    EXPECT_TRUE(fs::exists(world.path("here/sticky/foreign")));
    EXPECT_EQ(errorOfRemoving(world.path("here/sticky/own")), 0);
  });
}

TEST_P(SecureRemovalOn, RefusesWhatIsFlaggedImmutableOrAppendOnly) {
  if (!keepsFlags(GetParam())) GTEST_SKIP() << kMayNotFlag;
  play([](LinuxFileWorld& world) {
    world.file("here/file");
    write(world.path("here/file"), "contents");
    write((world.folder("here/folder"), world.path("here/folder/inner")), "contents");
    const auto setFlags = [&](const char* name, int flags) {
      const FileDescriptor item(open(world.path(name).c_str(), O_RDONLY | O_CLOEXEC));
      return ioctl(item.get(), FS_IOC_SETFLAGS, &flags) == 0;
    };
    for (const int flag : {FS_IMMUTABLE_FL, FS_APPEND_FL}) {
      ASSERT_TRUE(setFlags("here/file", flag));
      ASSERT_TRUE(setFlags("here/folder/inner", flag));
      EXPECT_EQ(errorOfRemoving(world.path("here/file")), EPERM);
      EXPECT_EQ(errorOfRemoving(world.path("here/folder")), EPERM);
      EXPECT_EQ(contentsOf(world.path("here/file")), "contents");
      EXPECT_EQ(contentsOf(world.path("here/folder/inner")), "contents");
      ASSERT_TRUE(setFlags("here/folder/inner", 0));
      ASSERT_TRUE(setFlags("here/folder", flag));
      EXPECT_EQ(errorOfRemoving(world.path("here/folder")), EPERM);
      EXPECT_TRUE(fs::exists(world.path("here/folder/inner")));
      ASSERT_TRUE(setFlags("here/folder", 0));
      write(world.path("here/folder/inner"), "contents");
    }
    ASSERT_TRUE(setFlags("here/file", 0));
  });
}

}  // namespace
}  // namespace vornix::contract
