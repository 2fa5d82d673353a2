#include "platform/system/NSFileHandle.h"
#include "platform/base/Mutex.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/FileHandleFailure.h"
#include "platform/linux/system/FileSignals.h"

namespace vornix {
namespace {

void waitUntilWritable(int descriptor) {
  pollfd entry{descriptor, POLLOUT, 0};
  ::poll(&entry, 1, -1);
}

class LinuxFileHandle final : public NSFileHandle {
 public:
  LinuxFileHandle(int descriptor, bool owned) : descriptor_(descriptor), owned_(owned) {}
  ~LinuxFileHandle() override {
    if (owned_ && descriptor_ >= 0) ::close(descriptor_);
  }

  void writeData(std::string_view bytes) override {
    const Lock lock(mutex_);
    const FileSignalsAsErrors guard;
    while (!bytes.empty()) bytes.remove_prefix(writeSome(bytes));
  }

  void truncateFileAtOffset(std::uint64_t offset) override {
    const Lock lock(mutex_);
    truncateAt(descriptor_, offset);
  }

  void closeFile() override {
    const Lock lock(mutex_);
    if (owned_ && descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  }

 private:
  // The number of bytes that went out; 0 asks for another try.
  [[nodiscard]] std::size_t writeSome(std::string_view bytes) const VORNIX_REQUIRES(mutex_) {
    const auto written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written > 0) return static_cast<std::size_t>(written);
    // A device that takes nothing and says nothing would be asked for ever.
    if (written == 0) throwFailure("write", ENOSPC);
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      waitUntilWritable(descriptor_);
    } else if (errno != EINTR) {
      throwFailure("write", errno);
    }
    return 0;
  }

  Mutex mutex_;
  int descriptor_ VORNIX_GUARDED_BY(mutex_);
  const bool owned_;
};

// Opened without blocking, or a FIFO that nobody reads would hold the caller up for ever.
int openWithoutWaiting(const std::string& path, std::uint32_t mode) {
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  int descriptor = -1;
  do {
    descriptor = ::open(path.c_str(), kFlags, mode & 0xFFFFU);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor >= 0) ::fcntl(descriptor, F_SETFL, O_APPEND);
  return descriptor;
}

bool isFile(const struct stat& status) {
  return S_ISREG(status.st_mode);
}

// Opening a device may already do something, so the kind is asked for beforehand; a FIFO may still
// take the file's place.
FileDescriptor openFile(const std::string& path) {
  constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !isFile(status)) return {};
  FileDescriptor file(::open(path.c_str(), kFlags));
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !isFile(status)) return {};
  return file;
}

std::shared_ptr<NSFileHandle> processHandle(int descriptor) {
  return std::make_shared<LinuxFileHandle>(descriptor, false);
}

}  // namespace

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleWithStandardOutput() {
  static const auto& handle = *new std::shared_ptr<NSFileHandle>(processHandle(STDOUT_FILENO));
  return handle;
}

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleWithStandardError() {
  static const auto& handle = *new std::shared_ptr<NSFileHandle>(processHandle(STDERR_FILENO));
  return handle;
}

std::shared_ptr<NSFileHandle> NSFileHandle::openForAppending(std::string_view path,
                                                             std::uint32_t mode) {
  if (path.find('\0') != std::string_view::npos) return nullptr;
  const int descriptor = openWithoutWaiting(std::string(path), mode);
  return descriptor >= 0 ? std::make_shared<LinuxFileHandle>(descriptor, true) : nullptr;
}

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleForUpdatingAtPath(std::string_view path) {
  if (path.find('\0') != std::string_view::npos) return nullptr;
  FileDescriptor file = openFile(std::string(path));
  return file.isOpen() ? std::make_shared<LinuxFileHandle>(file.release(), true) : nullptr;
}

}  // namespace vornix
