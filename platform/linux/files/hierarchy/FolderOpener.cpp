#include "platform/linux/files/hierarchy/FolderOpener.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>

namespace vornix {
namespace {

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr int kRealFolder = kFolder | O_NOFOLLOW;

// Whether all folders of a mount of this file system have one device.
bool hasOneDevice(int folder) {
  struct statfs status {};
  if (fstatfs(folder, &status) != 0) return false;
  constexpr decltype(status.f_type) kXfs = 0x58465342;
  return status.f_type == EXT4_SUPER_MAGIC || status.f_type == TMPFS_MAGIC || status.f_type == kXfs;
}

}  // namespace

HierarchyKind FolderOpener::openRoot(const char* path, bool followsLink, FoundFolder& found) {
  struct stat status {};
  if (fstatat(AT_FDCWD, path, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    found.error = errno;
    return HierarchyKind::noStatus;
  }
  if (!S_ISDIR(status.st_mode)) {
    options_.noStatus = false;
    return kindOfMode(status.st_mode);
  }
  rootDevice_ = status.st_dev;
  identify(found, status);
  found.descriptor = FileDescriptor(::open(path, followsLink ? kFolder : kRealFolder));
  if (!found.descriptor.isOpen()) {
    found.error = errno;
  } else if (options_.noCrossing) {
    asksEachDevice_ = !hasOneDevice(found.descriptor.get());
  }
  return HierarchyKind::folder;
}

HierarchyKind FolderOpener::open(int parent, const char* name, FoundFolder& found) {
  const int descriptor = openWithinMount(parent, name);
  if (descriptor < 0) return lookWithoutOpening(parent, name, errno, found);
  found.descriptor = FileDescriptor(descriptor);
  const bool asks = found.isBeyondMount || asksEachDevice_ || !knowsMounts_;
  return asks ? lookAt(found) : HierarchyKind::folder;
}

int FolderOpener::openWithinMount(int parent, const char* name) {
  if (knowsMounts_) {
    struct open_how how {};
    how.flags = kRealFolder;
    how.resolve = RESOLVE_NO_XDEV;
    const auto descriptor = static_cast<int>(syscall(SYS_openat2, parent, name, &how, sizeof how));
    if (descriptor >= 0 || (errno != ENOSYS && errno != EPERM)) return descriptor;
  }
  const int descriptor = openat(parent, name, kRealFolder);
  // A kernel, or a sandbox, without the other call.
  if (descriptor >= 0) knowsMounts_ = false;
  return descriptor;
}

HierarchyKind FolderOpener::lookAt(FoundFolder& found) const {
  struct stat status {};
  if (fstat(found.descriptor.get(), &status) != 0) {
    found.error = errno;
    found.descriptor = FileDescriptor();
    return HierarchyKind::noStatus;
  }
  identify(found, status);
  if (found.isForeign) found.descriptor = FileDescriptor();
  return HierarchyKind::folder;
}

HierarchyKind FolderOpener::lookWithoutOpening(int parent, const char* name, int error,
                                               FoundFolder& found) const {
  struct stat status {};
  if (fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) {
    found.error = errno;
    return HierarchyKind::noStatus;
  }
  if (!S_ISDIR(status.st_mode)) return kindOfMode(status.st_mode);
  if (error == EXDEV) {
    found.isBeyondMount = true;
    identify(found, status);
  } else {
    found.error = error;
  }
  return HierarchyKind::folder;
}

void FolderOpener::enter(int parent, const char* name, FoundFolder& found) {
  found.descriptor = FileDescriptor(openat(parent, name, kRealFolder));
  if (!found.descriptor.isOpen()) found.error = errno;
}

void FolderOpener::identify(FoundFolder& found, const struct stat& status) const {
  found.isIdentified = true;
  found.identity = FolderIdentity::of(status);
  found.isForeign = options_.noCrossing && status.st_dev != rootDevice_;
}

HierarchyKind FolderOpener::kindOfType(unsigned char type) const {
  return kindOfMode(DTTOIF(type));
}

HierarchyKind FolderOpener::kindOfMode(mode_t mode) const {
  if (options_.noStatus) return HierarchyKind::notAsked;
  if (S_ISREG(mode)) return HierarchyKind::file;
  return S_ISLNK(mode) ? HierarchyKind::symbolicLink : HierarchyKind::other;
}

}  // namespace vornix
