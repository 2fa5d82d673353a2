#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/base/NSObject.h"

namespace vornix {

// What an operation on an open file throws when the system refuses it. Says why.
class NSFileHandleOperationException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An open file. Any thread; each operation is whole by itself.
class NSFileHandle : public NSObject {
 public:
  // The process's own; never closed.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> fileHandleWithStandardOutput();
  [[nodiscard]] static std::shared_ptr<NSFileHandle> fileHandleWithStandardError();
  // Write-only, appending, created with `mode` (low 16 bits) when missing. Null on failure. Never
  // blocks on a FIFO without a reader.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> openForAppending(std::string_view path,
                                                                      std::uint32_t mode);
  // Reading and writing, at its end, created with `mode` less the process's mask when missing. Each
  // write is appended in one piece, whatever other processes append; one that a full disk cuts
  // short throws, and what it left behind is ended by a newline before the next. Null on failure
  // and for anything but a regular file; never waits, and opens no device.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> openForUpdatingAtEnd(std::string_view path,
                                                                          std::uint32_t mode);

  // Reading and writing, at its beginning. Null for what is missing, may not be written or is no
  // regular file; never waits, and opens no device.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> fileHandleForUpdatingAtPath(
      std::string_view path);

  // All of the bytes, short writes repeated, with no other thread's bytes between them. Throws
  // `NSFileHandleOperationException` on failure; a reader that has gone away is one, not a signal.
  virtual void writeData(std::string_view bytes) = 0;
  // Cuts the file, or fills it up with zero bytes, to that length, and goes there. Throws
  // `NSFileHandleOperationException` on failure.
  virtual void truncateFileAtOffset(std::uint64_t offset) = 0;
  // From now on writing and cutting throw. The process's own handles stay open.
  virtual void closeFile() = 0;

  [[nodiscard]] std::string_view className() const override { return "NSFileHandle"; }
};

}  // namespace vornix
