#include "tests/contract/support/KindOfVolume.h"

#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <filesystem>

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

std::string nameOf(KindOfVolume kind) {
  return kind == KindOfVolume::ext4 ? "ext4" : "tmpfs";
}

}  // namespace vornix::contract
