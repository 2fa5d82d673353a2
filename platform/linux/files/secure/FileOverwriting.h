#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <vector>

#include "platform/linux/files/secure/RandomBytes.h"

namespace vornix {

// Puts random bytes over what is allocated to files, and has them on their way to the disk.
class FileOverwriting {
 public:
  explicit FileOverwriting(RandomBytes& random) : random_(random) {}

  // An open regular file, over the length that `status` tells; holes stay holes. Answers 0 or the
  // system's error number.
  [[nodiscard]] int overwrite(int file, const struct stat& status);

 private:
  [[nodiscard]] int overwriteRange(int file, off_t start, off_t end);

  RandomBytes& random_;
  std::vector<std::byte> buffer_ = std::vector<std::byte>(kBufferSize);

  static constexpr std::size_t kBufferSize = 256U << 10U;
};

// Waits until what was written to all of these files is on the disk. Answers 0 or the system's
// error number, with `done` the number of files, from the first on, that are.
[[nodiscard]] int awaitOnDisk(const std::vector<int>& files, std::size_t& done);

}  // namespace vornix
