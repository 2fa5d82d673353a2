#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/files/NSFileManager.h"
#include "platform/linux/system/FileDescriptor.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

std::string typeAt(const std::string& path) {
  const auto status = NSFileManager::defaultManager().attributesOfItemAtPath(path);
  return status ? std::string(nameOfFileType(status->type)) : "missing";
}

TEST(LinuxFileSystem, NamesTheTypesOfWhatIsNoFile) {
  const tests::ScratchFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  const FileDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  folder.path("s").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(typeAt(folder.path("pipe")), "NSFileTypeUnknown");
  EXPECT_EQ(typeAt(folder.path("s")), "NSFileTypeSocket");
  EXPECT_EQ(typeAt("/dev/null"), "NSFileTypeCharacterSpecial");
}

TEST(LinuxFileSystem, RemovesWhatIsNoFile) {
  const tests::ScratchFolder folder;
  std::filesystem::create_directory(folder.path("all"));
  ASSERT_EQ(mkfifo(folder.path("all/pipe").c_str(), 0600), 0);
  folder.write("all/read-only", "x");
  ASSERT_EQ(chmod(folder.path("all/read-only").c_str(), 0400), 0);
  EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath(folder.path("all")));
  EXPECT_EQ(typeAt(folder.path("all")), "missing");
}

TEST(LinuxFileSystem, TellsWhoseAnItemIs) {
  const tests::ScratchFolder folder;
  const auto& files = NSFileManager::defaultManager();
  EXPECT_TRUE(files.attributesOfItemAtPath(folder.path())->isOwn);
  EXPECT_EQ(files.attributesOfItemAtPath(folder.path())->permissions, 0700U);
  EXPECT_EQ(files.attributesOfItemAtPath("/")->isOwn, geteuid() == 0);
}

// Far deeper than a path can name.
TEST(LinuxFileSystem, RemovesFoldersThatLieTooDeepForAPath) {
  const tests::ScratchFolder folder;
  std::filesystem::create_directory(folder.path("deep"));
  FileDescriptor at(open(folder.path("deep").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (int depth = 0; depth < 3000; ++depth) {
    ASSERT_EQ(mkdirat(at.get(), "folder", 0700), 0);
    const FileDescriptor file(openat(at.get(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_TRUE(file.isOpen());
    at = FileDescriptor(openat(at.get(), "folder", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_TRUE(at.isOpen());
  }
  at = FileDescriptor();
  std::optional<NSError> error;
  EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath(folder.path("deep"), &error));
  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(typeAt(folder.path("deep")), "missing");
}

TEST(LinuxFileSystem, RemovesFoldersWithManyItems) {
  const tests::ScratchFolder folder;
  for (int number = 0; number < 2000; ++number)
    folder.write("many/" + std::to_string(number % 50) + "/" + std::to_string(number), "");
  EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath(folder.path("many")));
  EXPECT_EQ(typeAt(folder.path("many")), "missing");
}

TEST(LinuxFileSystem, MakesOneFolderForManyThreadsAtOnce) {
  const tests::ScratchFolder folder;
  std::atomic<int> failures = 0;
  std::vector<std::jthread> threads;
  for (int number = 0; number < 16; ++number) {
    threads.emplace_back([&folder, &failures] {
      const bool made =
          NSFileManager::defaultManager().createDirectoryAtPath(folder.path("a/b/c/d/e"), true);
      if (!made) ++failures;
    });
  }
  threads.clear();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(typeAt(folder.path("a/b/c/d/e")), "NSFileTypeDirectory");
}

// Somebody swaps a folder for a link to what must stay, again and again, while it is removed.
TEST(LinuxFileSystem, LeavesAloneWhatAFolderIsSwappedForWhileItIsRemoved) {
  const tests::ScratchFolder folder;
  folder.write("kept/file", "x");
  for (int round = 0; round < 50; ++round) {
    for (int number = 0; number < 20; ++number)
      folder.write("doomed/" + std::to_string(number) + "/a/b", "");
    const auto clear = [&folder](const char* name) {
      std::error_code ignored;
      std::filesystem::remove_all(folder.path(name), ignored);
    };
    std::jthread swapper([&folder, &clear] {
      for (int number = 0; number < 20; ++number) {
        const std::string target = folder.path("doomed/" + std::to_string(number));
        if (rename(target.c_str(), folder.path("aside").c_str()) != 0) continue;
        if (symlink(folder.path("kept").c_str(), target.c_str()) != 0) continue;
        clear("aside");
      }
    });
    NSFileManager::defaultManager().removeItemAtPath(folder.path("doomed"));
    swapper.join();
    EXPECT_EQ(typeAt(folder.path("kept/file")), "NSFileTypeRegular");
    clear("doomed");
    clear("aside");
  }
}

}  // namespace
}  // namespace vornix
