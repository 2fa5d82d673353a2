#include "platform/linux/files/ImmutableFlag.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {
namespace {

bool canHaveFlags(const struct stat& status) {
  return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode);
}

int withoutFlags(bool isImmutable) {
  return isImmutable ? EOPNOTSUPP : 0;
}

bool meansNoFlags(int error) {
  return error == ENOTTY || error == EOPNOTSUPP || error == EINVAL || error == ENOSYS;
}

}  // namespace

int setImmutableFlag(const std::string& path, bool isImmutable) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return errno;
  if (!canHaveFlags(status)) return withoutFlags(isImmutable);
  const FileDescriptor item(
      open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
  if (!item.isOpen() || fstat(item.get(), &status) != 0) return errno;
  if (!canHaveFlags(status)) return withoutFlags(isImmutable);
  int flags = 0;
  if (ioctl(item.get(), FS_IOC_GETFLAGS, &flags) != 0)
    return meansNoFlags(errno) ? withoutFlags(isImmutable) : errno;
  const int wanted = isImmutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
  if (wanted == flags) return 0;
  return errorOf(ioctl(item.get(), FS_IOC_SETFLAGS, &wanted));
}

}  // namespace vornix
