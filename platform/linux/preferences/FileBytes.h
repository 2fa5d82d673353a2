#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vornix {

inline constexpr std::size_t kLargestPropertyListFile = std::size_t{64} << 20U;

// Which state of a file was read. Two states with equal stamps are the same one, provided that the
// file had rested when it was stamped: clocks of file systems tick slowly.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;
  bool rested = false;

  // `status` as the system gave it just now.
  [[nodiscard]] static FileStamp of(const struct stat& status);
  [[nodiscard]] bool names(const struct stat& status) const;
};

struct FileBytes {
  // 0, or why there are no bytes: EISDIR for anything but a regular file, EFBIG beyond the limit.
  int error = 0;
  // Of the file, where its status could be told.
  FileStamp stamp;
  std::string bytes;
};

// One open, one status, one read. Never waits for a pipe.
[[nodiscard]] FileBytes readFileBytes(const std::string& path,
                                      std::size_t limit = kLargestPropertyListFile);

}  // namespace vornix
