#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Format.h"
#include "platform/base/Mutex.h"
#include "platform/base/NSObject.h"

namespace vornix {

using LogLevel = std::int32_t;
inline constexpr LogLevel LogLevelUnknown = 0;
inline constexpr LogLevel LogLevelDebug = 1;
inline constexpr LogLevel LogLevelInfo = 2;
inline constexpr LogLevel LogLevelError = 3;
inline constexpr LogLevel LogLevelAssert = 4;

// Levels outside 0 to 4 may reach all three roles and must be tolerated. Any thread. What these
// throw ends with the message.

// Delivers one already formatted message.
class GTMLogWriter {
 public:
  virtual ~GTMLogWriter() = default;
  virtual void logMessage(std::string_view message, LogLevel level) = 0;
};

// Turns a format and its arguments into a message; none suppresses the message. `function`,
// `format` and `arguments` may each be absent.
class GTMLogFormatter {
 public:
  virtual ~GTMLogFormatter() = default;
  [[nodiscard]] virtual std::optional<std::string> stringForFunc(
      std::optional<std::string_view> function, std::optional<std::string_view> format,
      const text::FormatArguments* arguments, LogLevel level) = 0;
  // True when that does nothing but build the text, so that it may be left out where a filter drops
  // the message whatever it says.
  [[nodiscard]] virtual bool onlyBuildsText() const { return false; }
};

// Decides whether a formatted message passes.
class GTMLogFilter {
 public:
  virtual ~GTMLogFilter() = default;
  [[nodiscard]] virtual bool filterAllowsMessage(std::string_view message, LogLevel level) = 0;
  // True when it drops every message of the level without looking at the text.
  [[nodiscard]] virtual bool dropsLevel(LogLevel /*level*/) const { return false; }
};

// A pipeline of formatter, filter and writer. Logging never throws into the caller. Any thread.
class GTMLogger : public NSObject, public GTMLogWriter {
 public:
  // A null part becomes the default: standard output, `GTMLogBasicFormatter`, `GTMLogNoFilter`.
  explicit GTMLogger(std::shared_ptr<GTMLogWriter> writer = nullptr,
                     std::shared_ptr<GTMLogFormatter> formatter = nullptr,
                     std::shared_ptr<GTMLogFilter> filter = nullptr);

  // The process's logger; made as `standardLogger` when there is none.
  [[nodiscard]] static std::shared_ptr<GTMLogger> sharedLogger();
  // Null makes the next `sharedLogger` build a new one.
  static void setSharedLogger(std::shared_ptr<GTMLogger> logger);

  [[nodiscard]] static std::shared_ptr<GTMLogger> loggerWithWriter(
      std::shared_ptr<GTMLogWriter> writer, std::shared_ptr<GTMLogFormatter> formatter,
      std::shared_ptr<GTMLogFilter> filter);
  [[nodiscard]] static std::shared_ptr<GTMLogger> logger();

  // Ready-made: standard lines with debug messages dropped, info only when verbose. Null when they
  // cannot be built.
  [[nodiscard]] static std::shared_ptr<GTMLogger> standardLogger();
  [[nodiscard]] static std::shared_ptr<GTMLogger> standardLoggerWithStderr();
  // Up to info on standard output, the rest on standard error.
  [[nodiscard]] static std::shared_ptr<GTMLogger> standardLoggerWithStdoutAndStderr();
  // Appends to the file, made with mode 0644. Null without a path or when it cannot be opened.
  [[nodiscard]] static std::shared_ptr<GTMLogger> standardLoggerWithPath(
      std::optional<std::string_view> path);
  // To the system's log.
  [[nodiscard]] static std::shared_ptr<GTMLogger> standardLoggerWithASL();

  [[nodiscard]] std::shared_ptr<GTMLogWriter> writer() const;
  [[nodiscard]] std::shared_ptr<GTMLogFormatter> formatter() const;
  [[nodiscard]] std::shared_ptr<GTMLogFilter> filter() const;
  void setWriter(std::shared_ptr<GTMLogWriter> writer);
  void setFormatter(std::shared_ptr<GTMLogFormatter> formatter);
  void setFilter(std::shared_ptr<GTMLogFilter> filter);

  template <typename... Arguments>
  void logDebug(std::optional<std::string_view> format, const Arguments&... arguments) {
    log(nullptr, LogLevelDebug, format, arguments...);
  }
  template <typename... Arguments>
  void logInfo(std::optional<std::string_view> format, const Arguments&... arguments) {
    log(nullptr, LogLevelInfo, format, arguments...);
  }
  template <typename... Arguments>
  void logError(std::optional<std::string_view> format, const Arguments&... arguments) {
    log(nullptr, LogLevelError, format, arguments...);
  }
  template <typename... Arguments>
  void logAssert(std::optional<std::string_view> format, const Arguments&... arguments) {
    log(nullptr, LogLevelAssert, format, arguments...);
  }
  // The same with the calling function's name, which may be null.
  template <typename... Arguments>
  void logFuncDebug(const char* function, std::optional<std::string_view> msg,
                    const Arguments&... arguments) {
    log(function, LogLevelDebug, msg, arguments...);
  }
  template <typename... Arguments>
  void logFuncInfo(const char* function, std::optional<std::string_view> msg,
                   const Arguments&... arguments) {
    log(function, LogLevelInfo, msg, arguments...);
  }
  template <typename... Arguments>
  void logFuncError(const char* function, std::optional<std::string_view> msg,
                    const Arguments&... arguments) {
    log(function, LogLevelError, msg, arguments...);
  }
  template <typename... Arguments>
  void logFuncAssert(const char* function, std::optional<std::string_view> msg,
                     const Arguments&... arguments) {
    log(function, LogLevelAssert, msg, arguments...);
  }

  // The one path of all eight. `function`, `format` and `arguments` may be absent.
  void logInternalFunc(const char* function, std::optional<std::string_view> format,
                       const text::FormatArguments* arguments, LogLevel level) noexcept;

  // As the writer of another logger: levels 1 to 4 are logged again, any other is dropped.
  void logMessage(std::string_view message, LogLevel level) override;

  [[nodiscard]] std::string_view className() const override { return "GTMLogger"; }

 private:
  template <typename... Arguments>
  void log(const char* function, LogLevel level, std::optional<std::string_view> format,
           const Arguments&... arguments) {
    const std::array<text::FormatArgument, sizeof...(Arguments)> list{
        text::FormatArgument(arguments)...};
    const text::FormatArguments view(list);
    logInternalFunc(function, format, &view, level);
  }

  // Guards the three references for the moment of a copy or a swap, never while a part runs.
  mutable Mutex mutex_;
  std::shared_ptr<GTMLogWriter> writer_ VORNIX_GUARDED_BY(mutex_);
  std::shared_ptr<GTMLogFormatter> formatter_ VORNIX_GUARDED_BY(mutex_);
  std::shared_ptr<GTMLogFilter> filter_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
