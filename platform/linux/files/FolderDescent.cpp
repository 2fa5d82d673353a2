#include "platform/linux/files/FolderDescent.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vornix {
namespace {

constexpr int kSubfolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t kMostOpenAbove = 31;

// For systems without the call that does it at once; does not see what is bound from the same
// volume.
int openOnSameDevice(int folder, const char* name, int flags, FileDescriptor& item) {
  FileDescriptor opened(openat(folder, name, flags));
  if (!opened.isOpen()) return errno;
  struct stat above {};
  struct stat below {};
  if (fstat(folder, &above) != 0 || fstat(opened.get(), &below) != 0) return errno;
  if (above.st_dev != below.st_dev) return EBUSY;
  item = std::move(opened);
  return 0;
}

}  // namespace

int openWithin(int folder, const char* name, int flags, FileDescriptor& item) {
  open_how how{};
  how.flags = static_cast<decltype(how.flags)>(flags | O_NOFOLLOW | O_CLOEXEC);
  how.resolve = RESOLVE_NO_XDEV | RESOLVE_NO_MAGICLINKS;
  const long opened = syscall(SYS_openat2, folder, name, &how, sizeof how);
  if (opened >= 0) {
    item = FileDescriptor(static_cast<int>(opened));
    return 0;
  }
  // Sandboxes that do not know the call refuse it in either way.
  if (errno == ENOSYS || errno == EPERM)
    return openOnSameDevice(folder, name, flags | O_NOFOLLOW | O_CLOEXEC, item);
  return errno == EXDEV ? EBUSY : errno;
}

int openSubfolder(int folder, const char* name, FileDescriptor& subfolder) {
  return openWithin(folder, name, kSubfolderFlags, subfolder);
}

FolderDescent::FolderDescent(FileDescriptor top) {
  levels_.push_back({std::move(top)});
}

int FolderDescent::descend(const std::string& name) {
  FileDescriptor below;
  int error = openSubfolder(folder(), name.c_str(), below);
  if (error == EMFILE || error == ENFILE) {
    if (closeAbove(0) != 0) return error;
    error = openSubfolder(folder(), name.c_str(), below);
  }
  if (error != 0) return error;
  if (const int closingError = closeAbove(kMostOpenAbove)) return closingError;
  levels_.push_back({std::move(below)});
  return 0;
}

int FolderDescent::ascend() {
  if (const int error = prepareToAscend()) return error;
  levels_.pop_back();
  return 0;
}

int FolderDescent::prepareToAscend() {
  Level& level = levels_[levels_.size() - 2];
  if (level.folder.isOpen()) return 0;
  FileDescriptor above(openat(folder(), "..", kSubfolderFlags));
  if (!above.isOpen()) return errno;
  struct stat status {};
  if (fstat(above.get(), &status) != 0) return errno;
  // Moved elsewhere meanwhile.
  if (status.st_dev != level.device || status.st_ino != level.inode) return EBUSY;
  level.folder = std::move(above);
  return 0;
}

int FolderDescent::closeAbove(std::size_t kept) {
  const std::size_t above = levels_.size() - 1;
  std::size_t end = above > kept ? above - kept : 0;
  // Those further out than a closed one are closed, too.
  while (end > 0 && levels_[end - 1].folder.isOpen()) {
    if (const int error = close(levels_[--end])) return error;
  }
  return 0;
}

int FolderDescent::close(Level& level) {
  struct stat status {};
  if (fstat(level.folder.get(), &status) != 0) return errno;
  level.device = status.st_dev;
  level.inode = status.st_ino;
  level.folder = FileDescriptor();
  return 0;
}

}  // namespace vornix
