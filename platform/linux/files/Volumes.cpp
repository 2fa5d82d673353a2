#include "platform/files/Volumes.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "platform/base/PathText.h"
#include "platform/linux/files/CanonicalPath.h"

namespace vornix {
namespace {

// Tells one mount from another. None, with `errno` set, for a path that cannot be reached.
std::optional<std::uint64_t> mountOf(const std::string& path) {
  struct statx status {};
  if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_MNT_ID, &status) !=
      0) {
    return std::nullopt;
  }
  if ((status.stx_mask & STATX_MNT_ID) != 0) return status.stx_mnt_id;
  // Kernels before 5.8 tell devices only, which a bind mount shares with what it shows.
  return (static_cast<std::uint64_t>(status.stx_dev_major) << 32U) | status.stx_dev_minor;
}

// False also for a name that is too long to ask about; a mount could not have been made there.
bool liesElsewhere(const std::string& path, std::uint64_t mount) {
  const auto other = mountOf(path);
  return other ? *other != mount : errno != ENAMETOOLONG;
}

class LinuxVolumes final : public Volumes {
 public:
  [[nodiscard]] std::optional<std::string> volumePathOf(std::string_view path) const override {
    auto point = canonicalPathOf(path);
    const auto mount = point ? mountOf(std::string(path)) : std::nullopt;
    // What another mount has covered is still the current folder for some, but has no path.
    if (!mount || liesElsewhere(*point, *mount)) return std::nullopt;
    while (*point != "/") {
      std::string folder = text::deletingLastPathComponent(*point);
      if (liesElsewhere(folder, *mount)) break;
      *point = std::move(folder);
    }
    return point;
  }
};

}  // namespace

const Volumes& sharedVolumes() {
  static const auto& volumes = *new LinuxVolumes;
  return volumes;
}

}  // namespace vornix
