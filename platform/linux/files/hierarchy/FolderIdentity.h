#pragma once

#include <sys/stat.h>

namespace vornix {

// Tells one folder from all others.
struct FolderIdentity {
  dev_t device = 0;
  ino_t inode = 0;

  [[nodiscard]] static FolderIdentity of(const struct stat& status) {
    return {status.st_dev, status.st_ino};
  }
  friend bool operator==(const FolderIdentity&, const FolderIdentity&) = default;
};

}  // namespace vornix
