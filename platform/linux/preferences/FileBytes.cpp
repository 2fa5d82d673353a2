#include "platform/linux/preferences/FileBytes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
// Longer than the slowest kernel tick; file systems without fractions count in steps of 2 s.
constexpr std::int64_t kFineTick = 20'000'000;
constexpr std::int64_t kCoarseTick = 2 * kNanosecondsPerSecond;

std::int64_t nanosecondsSince(std::int64_t seconds, std::int64_t nanoseconds) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const std::int64_t whole = now.tv_sec - seconds;
  if (whole > 10) return kCoarseTick + 1;
  if (whole < 0) return 0;
  return whole * kNanosecondsPerSecond + now.tv_nsec - nanoseconds;
}

int readAll(int descriptor, std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = read(descriptor, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  bytes.resize(done);
  return 0;
}

FileBytes failed(int error, const std::string& path) {
  struct stat status {};
  FileBytes result{.error = error, .stamp = {}, .bytes = {}};
  if (error != ENOENT && stat(path.c_str(), &status) == 0) result.stamp = FileStamp::of(status);
  return result;
}

}  // namespace

FileStamp FileStamp::of(const struct stat& status) {
  const std::int64_t tick = status.st_mtim.tv_nsec == 0 ? kCoarseTick : kFineTick;
  return {.device = status.st_dev,
          .inode = status.st_ino,
          .size = status.st_size,
          .seconds = status.st_mtim.tv_sec,
          .nanoseconds = status.st_mtim.tv_nsec,
          .rested = nanosecondsSince(status.st_mtim.tv_sec, status.st_mtim.tv_nsec) > tick};
}

bool FileStamp::names(const struct stat& status) const {
  return rested && device == status.st_dev && inode == status.st_ino && size == status.st_size &&
         seconds == status.st_mtim.tv_sec && nanoseconds == status.st_mtim.tv_nsec;
}

FileBytes readFileBytes(const std::string& path, std::size_t limit) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file.isOpen()) return failed(errno, path);
  struct stat status {};
  if (fstat(file.get(), &status) != 0) return failed(errno, path);
  FileBytes result{.error = 0, .stamp = FileStamp::of(status), .bytes = {}};
  if (!S_ISREG(status.st_mode)) {
    result.error = EISDIR;
  } else if (static_cast<std::uint64_t>(status.st_size) > limit) {
    result.error = EFBIG;
  } else {
    result.bytes.resize(static_cast<std::size_t>(status.st_size));
    result.error = readAll(file.get(), result.bytes);
  }
  return result;
}

}  // namespace vornix
