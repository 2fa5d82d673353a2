#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "platform/base/Mutex.h"
#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/FileHandleFailure.h"
#include "platform/linux/system/FileSignals.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {
namespace {

class UpdatingFileHandle final : public NSFileHandle {
 public:
  explicit UpdatingFileHandle(FileDescriptor file) : file_(std::move(file)) {}

  void writeData(std::string_view bytes) override {
    constexpr int kAttempts = 3;
    const Lock lock(mutex_);
    const FileSignalsAsErrors guard;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      if (writeAtOnce(bytes)) return;
    }
    throwFailure("write", ENOSPC);
  }

  void truncateFileAtOffset(std::uint64_t offset) override {
    const Lock lock(mutex_);
    truncateAt(file_.get(), offset);
    endsWithinLine_ = false;
  }

  void closeFile() override {
    const Lock lock(mutex_);
    const FileDescriptor closed = std::move(file_);
  }

 private:
  // The system appends each write in one piece. The rest of one that was cut short could come
  // behind another program's bytes, so the whole is written again, on a line of its own.
  [[nodiscard]] bool writeAtOnce(std::string_view bytes) VORNIX_REQUIRES(mutex_) {
    if (!endsWithinLine_) return writeOnce(bytes);
    return writeOnce("\n" + std::string(bytes));
  }

  [[nodiscard]] bool writeOnce(std::string_view bytes) VORNIX_REQUIRES(mutex_) {
    const ssize_t result = writeUninterrupted(bytes);
    if (result < 0) throwFailure("write", errno);
    const auto written = static_cast<std::size_t>(result);
    const bool whole = written == bytes.size();
    if (whole) {
      endsWithinLine_ = false;
    } else if (written > 0) {
      endsWithinLine_ = bytes[written - 1] != '\n';
    }
    return whole;
  }

  [[nodiscard]] ssize_t writeUninterrupted(std::string_view bytes) const VORNIX_REQUIRES(mutex_) {
    ssize_t result = -1;
    do {
      result = ::write(file_.get(), bytes.data(), bytes.size());
    } while (result < 0 && errno == EINTR);
    return result;
  }

  Mutex mutex_;
  FileDescriptor file_ VORNIX_GUARDED_BY(mutex_);
  // Whether the file ends with what is left of a write of ours.
  bool endsWithinLine_ VORNIX_GUARDED_BY(mutex_) = false;
};

// Opening a device may already do something, so the kind is asked for beforehand.
bool mayBeOpened(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? S_ISREG(status.st_mode) : errno == ENOENT;
}

FileDescriptor openWith(const std::string& path, int more, std::uint32_t mode) {
  // Not waiting, in case a FIFO has meanwhile taken the file's place.
  constexpr int kFlags = O_RDWR | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  int descriptor = -1;
  do {
    descriptor = ::open(path.c_str(), kFlags | more, mode & 0xFFFFU);
  } while (descriptor < 0 && errno == EINTR);
  return FileDescriptor(descriptor);
}

bool isRegularFile(const FileDescriptor& file) {
  struct stat status {};
  return ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::shared_ptr<NSFileHandle> NSFileHandle::openForUpdatingAtEnd(std::string_view path,
                                                                 std::uint32_t mode) {
  const std::string name(path);
  if (name.find('\0') != std::string::npos || !mayBeOpened(name)) return nullptr;
  FileDescriptor file = openWith(name, 0, 0);
  // Never truncated: another program may have made it and written to it since.
  if (!file.isOpen() && errno == ENOENT) file = openWith(name, O_CREAT, mode);
  if (!file.isOpen() || !isRegularFile(file)) return nullptr;
  ::lseek(file.get(), 0, SEEK_END);
  return std::make_shared<UpdatingFileHandle>(std::move(file));
}

}  // namespace vornix
