#include "platform/linux/files/ItemCopy.h"

#include <fcntl.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

#include "platform/linux/files/FileContents.h"
#include "platform/linux/files/FolderDescent.h"
#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {
namespace {

constexpr mode_t kPermissions = 07777;
constexpr mode_t kRunsAsOwner = S_ISUID | S_ISGID;

std::array<timespec, 2> timesOf(const struct statx& status) {
  return {timespec{status.stx_atime.tv_sec, status.stx_atime.tv_nsec},
          timespec{status.stx_mtime.tv_sec, status.stx_mtime.tv_nsec}};
}

// Where only root may give items away, or the file system knows no owners.
bool meansNotAllowed(int error) {
  return error == EPERM || error == EACCES || error == EINVAL || error == EOPNOTSUPP;
}

mode_t permissionsOf(const struct statx& status, bool keepsOwner) {
  const mode_t all = status.stx_mode & kPermissions;
  return keepsOwner ? all : all & ~kRunsAsOwner;
}

int setOwner(int copy, const struct statx& status, bool& isKept) {
  isKept = fchown(copy, status.stx_uid, status.stx_gid) == 0;
  if (isKept) return 0;
  if (!meansNotAllowed(errno)) return errno;
  // The group alone may be allowed.
  (void)!fchown(copy, static_cast<uid_t>(-1), status.stx_gid);
  return 0;
}

// Calls until the buffer is large enough; the length, or -1.
template <typename Call>
ssize_t fill(std::string& buffer, Call call) {
  for (;;) {
    const ssize_t needed = call(nullptr, 0);
    if (needed <= 0) return needed;
    buffer.resize(static_cast<std::size_t>(needed));
    const ssize_t length = call(buffer.data(), buffer.size());
    if (length >= 0 || errno != ERANGE) {
      buffer.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
      return length;
    }
  }
}

int copyAttribute(int source, int copy, const char* name, bool& lostAttributes) {
  std::string value;
  const ssize_t length = fill(
      value, [=](char* data, std::size_t size) { return fgetxattr(source, name, data, size); });
  if (length < 0) return errno == ENODATA ? 0 : errno;
  if (fsetxattr(copy, name, value.data(), static_cast<std::size_t>(length), 0) == 0) return 0;
  const bool isPersons = std::string_view(name).starts_with("user.");
  if (!meansNotAllowed(errno) || (isPersons && errno != EOPNOTSUPP)) return errno;
  lostAttributes |= isPersons;
  return 0;
}

int copyExtendedAttributes(int source, int copy, bool& lostAttributes) {
  std::string names;
  const ssize_t length = fill(
      names, [source](char* data, std::size_t size) { return flistxattr(source, data, size); });
  if (length < 0) return errno == EOPNOTSUPP ? 0 : errno;
  for (std::size_t at = 0; length > 0 && at < names.size(); at = names.find('\0', at) + 1) {
    if (const int error = copyAttribute(source, copy, names.c_str() + at, lostAttributes))
      return error;
  }
  return 0;
}

int setAttributesByName(int folder, const char* name, const struct statx& status) {
  const bool keepsOwner =
      fchownat(folder, name, status.stx_uid, status.stx_gid, AT_SYMLINK_NOFOLLOW) == 0;
  if (!keepsOwner && !meansNotAllowed(errno)) return errno;
  const bool isLink = S_ISLNK(status.stx_mode);
  if (!isLink &&
      fchmodat(folder, name, permissionsOf(status, keepsOwner), AT_SYMLINK_NOFOLLOW) != 0)
    return errno;
  const auto times = timesOf(status);
  return errorOf(utimensat(folder, name, times.data(), AT_SYMLINK_NOFOLLOW));
}

}  // namespace

bool isSameItem(const struct statx& left, const struct statx& right) {
  return left.stx_ino == right.stx_ino && left.stx_dev_major == right.stx_dev_major &&
         left.stx_dev_minor == right.stx_dev_minor;
}

bool isUnchanged(const struct statx& before, const struct statx& after) {
  return isSameItem(before, after) && before.stx_size == after.stx_size &&
         before.stx_ctime.tv_sec == after.stx_ctime.tv_sec &&
         before.stx_ctime.tv_nsec == after.stx_ctime.tv_nsec;
}

int copyAttributes(int source, int copy, const struct statx& status, bool& lostAttributes) {
  bool keepsOwner = false;
  if (const int error = setOwner(copy, status, keepsOwner)) return error;
  if (fchmod(copy, permissionsOf(status, keepsOwner)) != 0 && !meansNotAllowed(errno)) return errno;
  if (const int error = copyExtendedAttributes(source, copy, lostAttributes)) return error;
  const auto times = timesOf(status);
  return errorOf(futimens(copy, times.data()));
}

namespace {

int requireUnchanged(int file, const struct statx& before) {
  struct statx now {};
  if (statx(file, "", AT_EMPTY_PATH, STATX_BASIC_STATS, &now) != 0) return errno;
  return isUnchanged(before, now) ? 0 : EBUSY;
}

}  // namespace

int copyFile(int folder, const char* name, const struct statx& status, int copyFolder,
             const char* copyName, bool& lostAttributes) {
  FileDescriptor source;
  // Not waiting, in case a FIFO has meanwhile taken the file's place.
  const int error = openWithin(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY, source);
  if (error != 0) return error == ELOOP ? EBUSY : error;
  if (const int changed = requireUnchanged(source.get(), status)) return changed;
  const FileDescriptor copy(
      openat(copyFolder, copyName, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!copy.isOpen()) return errno;
  if (const int failed = copySparseContents(source.get(), copy.get(), status.stx_size))
    return failed;
  if (const int failed = copyAttributes(source.get(), copy.get(), status, lostAttributes))
    return failed;
  return requireUnchanged(source.get(), status);
}

int copyLink(int folder, const char* name, const struct statx& status, int copyFolder,
             const char* copyName) {
  std::string target(status.stx_size + 1, '\0');
  const ssize_t length = readlinkat(folder, name, target.data(), target.size());
  if (length < 0) return errno == EINVAL ? EBUSY : errno;
  if (length == static_cast<ssize_t>(target.size())) return EBUSY;
  target.resize(static_cast<std::size_t>(length));
  if (symlinkat(target.c_str(), copyFolder, copyName) != 0) return errno;
  return setAttributesByName(copyFolder, copyName, status);
}

int copySpecial(const struct statx& status, int copyFolder, const char* copyName) {
  const dev_t device = makedev(status.stx_rdev_major, status.stx_rdev_minor);
  const mode_t kind = status.stx_mode & S_IFMT;
  if (mknodat(copyFolder, copyName, kind | 0600, device) != 0) return errno;
  return setAttributesByName(copyFolder, copyName, status);
}

}  // namespace vornix
