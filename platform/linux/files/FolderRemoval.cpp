#include "platform/linux/files/FolderRemoval.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/base/PathText.h"
#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/FolderHandle.h"

namespace vornix {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

int resultOf(int answer) {
  return answer == 0 ? 0 : errno;
}

int namesIn(int folder, std::vector<std::string>& names) {
  const int copy = fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return errno;
  const FolderHandle stream(fdopendir(copy));
  if (!stream) {
    const int error = errno;
    close(copy);
    return error;
  }
  errno = 0;
  while (const dirent* entry = readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
    errno = 0;
  }
  return errno;
}

bool isFolder(int folder, const std::string& name) {
  struct stat status {};
  return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

// Goes down into folders and up again through "..", which it trusts only when it leads to where it
// came from.
class TreeRemoval {
 public:
  // Empties the folder.
  int run(FileDescriptor folder) {
    int error = enter(std::move(folder), {});
    while (error == 0 && (levels_.size() > 1 || !levels_.back().folders.empty()))
      error = levels_.back().folders.empty() ? leave() : descend();
    return error;
  }

 private:
  struct Level {
    std::string name;
    dev_t device = 0;
    ino_t inode = 0;
    // Still to be removed.
    std::vector<std::string> folders;
  };

  int enter(FileDescriptor folder, std::string name) {
    struct stat status {};
    if (fstat(folder.get(), &status) != 0) return errno;
    current_ = std::move(folder);
    levels_.push_back({std::move(name), status.st_dev, status.st_ino, {}});
    std::vector<std::string> names;
    if (const int error = namesIn(current_.get(), names)) return error;
    for (std::string& each : names) {
      if (const int error = removeOrKeep(std::move(each))) return error;
    }
    return 0;
  }

  // Keeps a folder's name for later.
  int removeOrKeep(std::string name) {
    const int error = resultOf(unlinkat(current_.get(), name.c_str(), 0));
    if ((error == EISDIR || error == EPERM) && isFolder(current_.get(), name)) {
      levels_.back().folders.push_back(std::move(name));
      return 0;
    }
    return error == ENOENT ? 0 : error;
  }

  int descend() {
    std::string name = std::move(levels_.back().folders.back());
    levels_.back().folders.pop_back();
    FileDescriptor folder(openat(current_.get(), name.c_str(), kFolderFlags));
    if (folder.isOpen()) return enter(std::move(folder), std::move(name));
    const int error = errno;
    // Removed, or swapped for something else, since it was read.
    if (error == ENOENT) return 0;
    return error == ENOTDIR || error == ELOOP ? removeOrKeep(std::move(name)) : error;
  }

  int leave() {
    const std::string name = std::move(levels_.back().name);
    levels_.pop_back();
    FileDescriptor parent(openat(current_.get(), "..", kFolderFlags));
    if (!parent.isOpen()) return errno;
    struct stat status {};
    if (fstat(parent.get(), &status) != 0) return errno;
    const Level& expected = levels_.back();
    // Moved elsewhere meanwhile.
    if (status.st_dev != expected.device || status.st_ino != expected.inode) return EBUSY;
    current_ = std::move(parent);
    const int error = resultOf(unlinkat(current_.get(), name.c_str(), AT_REMOVEDIR));
    return error == ENOENT ? 0 : error;
  }

  FileDescriptor current_;
  std::vector<Level> levels_;
};

int removeFolder(const std::string& path) {
  FileDescriptor folder(open(path.c_str(), kFolderFlags));
  if (!folder.isOpen()) {
    // One that may not be read goes all the same when it is empty.
    const int error = errno;
    return rmdir(path.c_str()) == 0 ? 0 : error;
  }
  const int error = TreeRemoval().run(std::move(folder));
  return error != 0 ? error : resultOf(rmdir(path.c_str()));
}

}  // namespace

int removeItem(const std::string& path) {
  // With a slash at its end a link would be followed.
  std::string item = path;
  while (item.size() > 1 && item.ends_with('/')) item.pop_back();
  const std::string name = text::lastPathComponent(item);
  if (name == "/") return EBUSY;
  if (name == "." || name == "..") return EINVAL;
  struct stat status {};
  if (lstat(item.c_str(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return removeFolder(item);
  if (item.size() < path.size() && !S_ISLNK(status.st_mode)) return ENOTDIR;
  return resultOf(unlink(item.c_str()));
}

}  // namespace vornix
