#include "tests/contract/support/KindOfVolume.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/system/FileDescriptor.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {

std::optional<std::string> folderOn(KindOfVolume kind) {
  const long magic = kind == KindOfVolume::ext4 ? EXT4_SUPER_MAGIC : TMPFS_MAGIC;
  for (const std::string& folder : {std::filesystem::temp_directory_path().string(),
                                    std::string("/var/tmp"), std::string("/dev/shm")}) {
    struct statfs found {};
    const bool fits = statfs(folder.c_str(), &found) == 0 && found.f_type == magic;
    if (fits && access(folder.c_str(), W_OK | X_OK) == 0) return folder;
  }
  return std::nullopt;
}

bool keepsFlags(KindOfVolume kind) {
  const auto parent = folderOn(kind);
  if (!parent) return false;
  const tests::ScratchFolder folder(*parent);
  const FileDescriptor file(open(folder.write("file", "").c_str(), O_RDONLY | O_CLOEXEC));
  int flags = FS_IMMUTABLE_FL;
  if (ioctl(file.get(), FS_IOC_SETFLAGS, &flags) != 0) return false;
  flags = 0;
  return ioctl(file.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

std::string nameOf(KindOfVolume kind) {
  return kind == KindOfVolume::ext4 ? "ext4" : "tmpfs";
}

}  // namespace vornix::contract
