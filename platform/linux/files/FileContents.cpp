#include "platform/linux/files/FileContents.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>

#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/system/FileSignals.h"

namespace vornix {
namespace {

constexpr std::size_t kMostBuffered = 256U << 10U;

class ContentsCopy {
 public:
  ContentsCopy(int source, int copy, off_t size)
      : source_(source),
        copy_(copy),
        size_(size),
        capacity_(std::min(kMostBuffered, static_cast<std::size_t>(size))) {}

  int run() {
    const FileSignalsAsErrors guard;
    off_t end = 0;
    while (end < size_) {
      off_t start = 0;
      if (!findData(end, start, end)) break;
      if (const int error = copyRange(start, end)) return error;
    }
    return errorOf(ftruncate(copy_, size_));
  }

 private:
  // The next stored piece at or after `at`; false when there is none. A file system that does not
  // tell stores everything.
  [[nodiscard]] bool findData(off_t at, off_t& start, off_t& end) const {
    start = lseek(source_, at, SEEK_DATA);
    if (start < 0 && errno == ENXIO) return false;
    if (start < 0) start = at;
    const off_t hole = lseek(source_, start, SEEK_HOLE);
    end = hole > start ? std::min(hole, size_) : size_;
    return start < size_;
  }

  int copyRange(off_t at, off_t end) {
    while (at < end) {
      const auto wanted = std::min(capacity_, static_cast<std::size_t>(end - at));
      const ssize_t length = pread(source_, buffer_.get(), wanted, at);
      if (length < 0 && errno == EINTR) continue;
      if (length < 0) return errno;
      // Cut short meanwhile, which the caller sees.
      if (length == 0) return 0;
      if (const int error = writeAll(static_cast<std::size_t>(length), at)) return error;
      at += length;
    }
    return 0;
  }

  int writeAll(std::size_t length, off_t at) {
    std::size_t done = 0;
    while (done < length) {
      const ssize_t written =
          pwrite(copy_, buffer_.get() + done, length - done, at + static_cast<off_t>(done));
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return written < 0 ? errno : ENOSPC;
      done += static_cast<std::size_t>(written);
    }
    return 0;
  }

  const int source_;
  const int copy_;
  const off_t size_;
  const std::size_t capacity_;
  std::unique_ptr<std::byte[]> buffer_{new std::byte[capacity_]};
};

}  // namespace

int copySparseContents(int source, int copy, std::uint64_t size) {
  return size == 0 ? 0 : ContentsCopy(source, copy, static_cast<off_t>(size)).run();
}

}  // namespace vornix
