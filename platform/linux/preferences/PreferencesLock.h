#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix {

// Keeps other programs from writing the same preferences while it lives. The system lets go of it
// when the program dies.
class PreferencesLock {
 public:
  // Waits that long at most, since a stopped program keeps its lock. None, with `errno` set
  // (ETIMEDOUT when the wait was in vain).
  [[nodiscard]] static std::optional<PreferencesLock> acquire(const std::string& path,
                                                              std::chrono::milliseconds patience);

 private:
  explicit PreferencesLock(FileDescriptor file) : file_(std::move(file)) {}

  FileDescriptor file_;
};

}  // namespace vornix
