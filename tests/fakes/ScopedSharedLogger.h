#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "logging/GTMLogger.h"

namespace vornix::fakes {

struct LoggedLine {
  LogLevel level = LogLevelUnknown;
  std::string message;
  // What the caller gave to `logFunc…`; none for the plain operations.
  std::optional<std::string> function{};

  friend bool operator==(const LoggedLine&, const LoggedLine&) = default;
};

// Keeps what it is given, bare messages and all levels. Any thread.
class CapturingLogWriter : public GTMLogBasicFormatter, public GTMLogWriter {
 public:
  [[nodiscard]] std::vector<LoggedLine> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }
  // The messages of one level, or of all, in order.
  [[nodiscard]] std::vector<std::string> messages(std::optional<LogLevel> level = {}) const {
    std::vector<std::string> result;
    for (const auto& line : lines()) {
      if (!level || line.level == *level) result.push_back(line.message);
    }
    return result;
  }
  [[nodiscard]] bool contains(std::string_view message) const {
    const auto all = messages();
    return std::find(all.begin(), all.end(), message) != all.end();
  }
  void clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
  }

  std::optional<std::string> stringForFunc(std::optional<std::string_view> function,
                                           std::optional<std::string_view> format,
                                           const text::FormatArguments* arguments,
                                           LogLevel level) override {
    functionOfThread() = function;
    return GTMLogBasicFormatter::stringForFunc(function, format, arguments, level);
  }
  void logMessage(std::string_view message, LogLevel level) override {
    const std::lock_guard lock(mutex_);
    lines_.push_back({level, std::string(message), std::exchange(functionOfThread(), {})});
  }

 private:
  // Formatter and writer see one message on one thread, one right after the other.
  static std::optional<std::string>& functionOfThread() {
    static thread_local std::optional<std::string> function;
    return function;
  }

  mutable std::mutex mutex_;
  std::vector<LoggedLine> lines_;
};

// While it lives, the shared logger records every message of every level. Afterwards the next use
// of the shared logger makes a standard one.
class ScopedSharedLogger {
 public:
  ScopedSharedLogger() {
    GTMLogger::setSharedLogger(
        GTMLogger::loggerWithWriter(capture_, capture_, std::make_shared<GTMLogNoFilter>()));
  }
  ScopedSharedLogger(const ScopedSharedLogger&) = delete;
  ScopedSharedLogger& operator=(const ScopedSharedLogger&) = delete;
  ~ScopedSharedLogger() { GTMLogger::setSharedLogger(nullptr); }

  [[nodiscard]] CapturingLogWriter& capture() const { return *capture_; }
  [[nodiscard]] std::vector<LoggedLine> lines() const { return capture_->lines(); }
  [[nodiscard]] std::vector<std::string> messages(std::optional<LogLevel> level = {}) const {
    return capture_->messages(level);
  }
  [[nodiscard]] bool contains(std::string_view message) const {
    return capture_->contains(message);
  }

 private:
  std::shared_ptr<CapturingLogWriter> capture_ = std::make_shared<CapturingLogWriter>();
};

}  // namespace vornix::fakes
