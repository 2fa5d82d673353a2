#include "platform/linux/files/secure/FileOverwriting.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>

namespace vornix {
namespace {

constexpr off_t kWritebackStep = off_t{8} << 20U;
constexpr unsigned long kXfs = 0x58465342;

// On these, overwritten blocks stay where they are and need no change to anything else: once their
// pages are written, one flush of the drive makes all of them safe.
bool sharesFlushes(int file) {
  struct statfs found {};
  if (fstatfs(file, &found) != 0) return false;
  const auto magic = static_cast<unsigned long>(found.f_type);
  return magic == EXT4_SUPER_MAGIC || magic == kXfs;
}

int writeAt(int file, std::span<const std::byte> bytes, off_t at) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(file, bytes.data(), bytes.size(), at);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    if (written == 0) return EIO;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    at += written;
  }
  return 0;
}

// Only saves time, so it may fail.
void startWriteback(int file, off_t start, off_t end) {
  if (end > start) (void)sync_file_range(file, start, end - start, SYNC_FILE_RANGE_WRITE);
}

// The next allocated bytes from `start` on, as a range that may be empty at the end.
void findAllocated(int file, off_t& start, off_t& end) {
  const off_t data = lseek(file, start, SEEK_DATA);
  if (data < 0) {
    // Else the file system knows of no holes.
    if (errno == ENXIO) start = end;
    return;
  }
  const off_t hole = lseek(file, data, SEEK_HOLE);
  start = std::min(data, end);
  if (hole > data) end = std::min(hole, end);
}

int awaitPages(int file) {
  constexpr unsigned int kWriteAndWait =
      SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
  return sync_file_range(file, 0, 0, kWriteAndWait) == 0 ? 0 : errno;
}

int awaitFile(int file) {
  return fdatasync(file) == 0 ? 0 : errno;
}

}  // namespace

int FileOverwriting::overwrite(int file, const struct stat& status) {
  constexpr off_t kBlock = 512;
  const bool mayHaveHoles = status.st_blocks * kBlock < status.st_size;
  for (off_t start = 0; start < status.st_size;) {
    off_t end = status.st_size;
    if (mayHaveHoles) findAllocated(file, start, end);
    if (const int error = overwriteRange(file, start, end)) return error;
    start = end;
  }
  return 0;
}

int FileOverwriting::overwriteRange(int file, off_t start, off_t end) {
  off_t pending = start;
  while (start < end) {
    const auto left = static_cast<std::size_t>(end - start);
    const std::span bytes(buffer_.data(), std::min(left, buffer_.size()));
    random_.fill(bytes);
    if (const int error = writeAt(file, bytes, start)) return error;
    start += static_cast<off_t>(bytes.size());
    if (start - pending < kWritebackStep) continue;
    startWriteback(file, pending, start);
    pending = start;
  }
  startWriteback(file, pending, end);
  return 0;
}

int awaitOnDisk(const std::vector<int>& files, std::size_t& done) {
  done = 0;
  if (files.empty()) return 0;
  const bool sharesFlush = sharesFlushes(files.front());
  int error = 0;
  for (const int file : files) {
    error = sharesFlush ? awaitPages(file) : awaitFile(file);
    if (error != 0) break;
    ++done;
  }
  const int flushError = sharesFlush && done > 0 ? awaitFile(files[done - 1]) : 0;
  if (flushError != 0) done = 0;
  return flushError != 0 ? flushError : error;
}

}  // namespace vornix
