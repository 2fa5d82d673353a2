#include "platform/linux/preferences/FileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

#include "platform/base/PathText.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {
namespace {

constexpr int kMostLinks = 40;
constexpr int kMostNames = 10000;

int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

int flush(const std::string& path, int flags) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | flags));
  return file.isOpen() && fsync(file.get()) == 0 ? 0 : errno;
}

// File systems without hard links, and folders, are renamed instead.
bool giveName(const std::string& path, const std::string& name) {
  if (link(path.c_str(), name.c_str()) == 0) return true;
  if (errno == EEXIST) return false;
  if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  struct stat status {};
  if (lstat(name.c_str(), &status) == 0) {
    errno = EEXIST;
    return false;
  }
  return rename(path.c_str(), name.c_str()) == 0;
}

}  // namespace

std::optional<std::string> resolveFileLinks(const std::string& path) {
  std::string current = path;
  for (int links = 0; links < kMostLinks; ++links) {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = readlink(current.c_str(), buffer.data(), buffer.size());
    if (length < 0) return current;
    const std::string_view target(buffer.data(), static_cast<std::size_t>(length));
    current = target.starts_with('/')
                  ? std::string(target)
                  : text::deletingLastPathComponent(current) + "/" + std::string(target);
  }
  errno = ELOOP;
  return std::nullopt;
}

std::string hiddenSibling(const std::string& path, std::string_view suffix) {
  const std::size_t slash = path.rfind('/');
  const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
  return path.substr(0, start) + "." + path.substr(start) + "." + std::string(suffix);
}

int writeNewFile(const std::string& path, std::string_view bytes, FileStamp& stamp) {
  constexpr mode_t kOwnerOnly = 0600;
  unlink(path.c_str());
  const FileDescriptor file(
      open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly));
  if (!file.isOpen()) return errno;
  int error = writeAll(file.get(), bytes);
  struct stat status {};
  if (error == 0 && fstat(file.get(), &status) != 0) error = errno;
  if (error != 0) unlink(path.c_str());
  stamp = FileStamp::of(status);
  return error;
}

std::optional<std::string> setAside(const std::string& path) {
  for (int number = 1; number <= kMostNames; ++number) {
    std::string name = path + ".damaged";
    if (number > 1) name += "-" + std::to_string(number);
    if (giveName(path, name)) return name;
    if (errno != EEXIST) return std::nullopt;
  }
  return std::nullopt;
}

int flushFileAndFolder(const std::string& path) {
  if (const int error = flush(path, 0)) return error;
  return flush(text::deletingLastPathComponent(path), O_DIRECTORY);
}

}  // namespace vornix
