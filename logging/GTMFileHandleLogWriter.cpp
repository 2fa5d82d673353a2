#include "logging/GTMFileHandleLogWriter.h"

#include <string>
#include <utility>

namespace vornix {

GTMFileHandleLogWriter::GTMFileHandleLogWriter(std::shared_ptr<NSFileHandle> fileHandle)
    : fileHandle_(std::move(fileHandle)) {}

std::shared_ptr<GTMFileHandleLogWriter> GTMFileHandleLogWriter::fileHandleForLoggingAtPath(
    std::optional<std::string_view> path, std::uint32_t mode) {
  if (!path) return nullptr;
  auto fileHandle = NSFileHandle::openForAppending(*path, mode & 0xFFFFU);
  return fileHandle != nullptr ? std::make_shared<GTMFileHandleLogWriter>(std::move(fileHandle))
                               : nullptr;
}

void GTMFileHandleLogWriter::logMessage(std::string_view message, LogLevel /*level*/) {
  try {
    if (fileHandle_ != nullptr) fileHandle_->writeData(std::string(message) + "\n");
    // NOLINTNEXTLINE(bugprone-empty-catch): a full disk or a closed pipe costs the line, no more.
  } catch (...) {
  }
}

}  // namespace vornix
