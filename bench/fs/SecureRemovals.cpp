#include "bench/fs/SecureRemovals.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "bench/fs/WalkProgram.h"
#include "platform/files/FileRemover.h"

namespace vornix::bench {
namespace {

void require(bool holds, const char* what) {
  if (holds) return;
  std::perror(what);
  std::exit(2);
}

void overwriteRaw(const std::string& path, const std::vector<char>& block) {
  const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  struct stat status {};
  require(file >= 0 && fstat(file, &status) == 0, path.c_str());
  for (off_t at = 0; at < status.st_size;) {
    const auto left = static_cast<std::size_t>(status.st_size - at);
    const ssize_t written = write(file, block.data(), std::min(left, block.size()));
    require(written > 0, path.c_str());
    at += written;
  }
  require(fdatasync(file) == 0, path.c_str());
  close(file);
  require(unlink(path.c_str()) == 0, path.c_str());
}

}  // namespace

void removeSecurelyWithOurs(const std::string& folder) {
  const auto result =
      sharedFileRemover().removefile(folder, REMOVEFILE_RECURSIVE | REMOVEFILE_SECURE_1_PASS);
  require(result.value == 0, folder.c_str());
}

void removeSecurelyRaw(const std::string& folder) {
  static const std::vector<char> block = [] {
    std::vector<char> bytes(std::size_t{1} << 20U);
    for (char& byte : bytes) byte = static_cast<char>(std::rand());
    return bytes;
  }();
  for (const auto& item : std::filesystem::directory_iterator(folder))
    overwriteRaw(item.path(), block);
  require(rmdir(folder.c_str()) == 0, folder.c_str());
}

bool removeSecurelyWithShred(const std::string& folder) {
  std::vector<std::string> arguments{"shred", "-n1", "-u"};
  for (const auto& item : std::filesystem::directory_iterator(folder))
    arguments.push_back(item.path());
  return runProgram(arguments) && rmdir(folder.c_str()) == 0;
}

}  // namespace vornix::bench
