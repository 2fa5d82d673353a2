#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "logging/GTMLogger.h"
#include "platform/base/Mutex.h"
#include "platform/base/NSObject.h"
#include "platform/system/NSDateFormatter.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/system/SystemClock.h"

namespace vornix {

// The format filled with its arguments and nothing else; none when either is missing.
class GTMLogBasicFormatter : public NSObject, public GTMLogFormatter {
 public:
  [[nodiscard]] std::optional<std::string> stringForFunc(std::optional<std::string_view> function,
                                                         std::optional<std::string_view> format,
                                                         const text::FormatArguments* arguments,
                                                         LogLevel level) override;

  // How a function is shown: "foo" as "foo()", "-[A b]", "+[A b]" and "f(int)" as they are, no
  // name or blanks as "(unknown)".
  [[nodiscard]] static std::string prettyNameForFunc(std::optional<std::string_view> function);

  [[nodiscard]] bool onlyBuildsText() const override;
  [[nodiscard]] std::string_view className() const override { return "GTMLogBasicFormatter"; }
};

// "2016-11-05 00:54:05.679 program[4711/0x7f..] [lvl=3] foo() message". Any thread.
class GTMLogStandardFormatter : public GTMLogBasicFormatter {
 public:
  // Name and number of the process are read now; the clock must outlive the formatter. Null without
  // a date formatter or a process name.
  [[nodiscard]] static std::shared_ptr<GTMLogStandardFormatter> create(
      std::unique_ptr<NSDateFormatter> dateFormatter, const NSProcessInfo& processInfo,
      const SystemClock& clock);
  // With the process's own services.
  [[nodiscard]] static std::shared_ptr<GTMLogStandardFormatter> create();

  [[nodiscard]] std::optional<std::string> stringForFunc(std::optional<std::string_view> function,
                                                         std::optional<std::string_view> format,
                                                         const text::FormatArguments* arguments,
                                                         LogLevel level) override;

  [[nodiscard]] bool onlyBuildsText() const override;
  [[nodiscard]] std::string_view className() const override { return "GTMLogStandardFormatter"; }

 protected:
  GTMLogStandardFormatter(std::unique_ptr<NSDateFormatter> dateFormatter, std::string pname,
                          std::int32_t pid, const SystemClock& clock);

 private:
  [[nodiscard]] std::string currentTime();

  RecursiveMutex dateFormatterMutex_;
  std::unique_ptr<NSDateFormatter> dateFormatter_ VORNIX_GUARDED_BY(dateFormatterMutex_);
  std::string pname_;
  std::int32_t pid_;
  const SystemClock& clock_;
};

// "foo() message": the system's log records time, process and level by itself.
class GTMLogASLFormatter : public GTMLogBasicFormatter {
 public:
  [[nodiscard]] std::optional<std::string> stringForFunc(std::optional<std::string_view> function,
                                                         std::optional<std::string_view> format,
                                                         const text::FormatArguments* arguments,
                                                         LogLevel level) override;

  [[nodiscard]] bool onlyBuildsText() const override;
  [[nodiscard]] std::string_view className() const override { return "GTMLogASLFormatter"; }
};

}  // namespace vornix
