#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "logging/GTMLogger.h"
#include "platform/base/NSObject.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {

// An open file as a writer: one line a message, written whole. What cannot be written is lost.
// Any thread.
class GTMFileHandleLogWriter : public NSObject, public GTMLogWriter {
 public:
  explicit GTMFileHandleLogWriter(std::shared_ptr<NSFileHandle> fileHandle);

  // Appends to the file, made with `mode` when missing; closed with the writer. Null without a path
  // or when the file cannot be opened.
  [[nodiscard]] static std::shared_ptr<GTMFileHandleLogWriter> fileHandleForLoggingAtPath(
      std::optional<std::string_view> path, std::uint32_t mode);

  // The message and one newline, whatever the message ends with; the level is not written.
  void logMessage(std::string_view message, LogLevel level) override;

  [[nodiscard]] const std::shared_ptr<NSFileHandle>& fileHandle() const { return fileHandle_; }
  [[nodiscard]] std::string_view className() const override { return "GTMFileHandleLogWriter"; }

 private:
  std::shared_ptr<NSFileHandle> fileHandle_;
};

}  // namespace vornix
