#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

#include "logging/GTMLogger.h"
#include "platform/base/NSObject.h"
#include "platform/runloop/NSNotificationCenter.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {

// Lets everything pass.
class GTMLogNoFilter : public NSObject, public GTMLogFilter {
 public:
  [[nodiscard]] bool filterAllowsMessage(std::string_view message, LogLevel level) override;
  [[nodiscard]] std::string_view className() const override { return "GTMLogNoFilter"; }
};

// Drops debug messages always, info messages unless logging is verbose. Verbose says the
// environment's "GTMVerboseLogging" (by its start: "y", "t" or a number other than 0), or where the
// environment has none the user default of that name; looked up at once and again whenever the user
// defaults change.
class GTMLogLevelFilter : public NSObject, public GTMLogFilter {
 public:
  // `verboseDefault` answers the user default; asked only where the environment says nothing, on
  // the thread that changes the defaults. Process information and centre must outlive the filter.
  GTMLogLevelFilter(const NSProcessInfo& processInfo, std::function<bool()> verboseDefault,
                    NSNotificationCenter& center);
  ~GTMLogLevelFilter() override;
  // With the process's own services.
  [[nodiscard]] static std::shared_ptr<GTMLogLevelFilter> create();

  [[nodiscard]] bool filterAllowsMessage(std::string_view message, LogLevel level) override;
  [[nodiscard]] bool dropsLevel(LogLevel level) const override;
  [[nodiscard]] std::string_view className() const override { return "GTMLogLevelFilter"; }

 private:
  NSNotificationCenter& center_;
  // Shared with an observer that may still be running when the filter ends.
  std::shared_ptr<std::atomic<bool>> verboseLoggingEnabled_;
  NSNotificationCenter::ObserverToken observer_;
};

// Lets the levels of a set pass.
class GTMLogAllowedLevelFilter : public NSObject, public GTMLogFilter {
 public:
  // Null when the set is missing, empty, or holds anything but 0 to 4.
  [[nodiscard]] static std::shared_ptr<GTMLogAllowedLevelFilter> createWithAllowedLevels(
      const std::optional<std::set<LogLevel>>& allowedLevels);
  // Levels 0 to 4.
  [[nodiscard]] static std::shared_ptr<GTMLogAllowedLevelFilter> create();

  [[nodiscard]] bool filterAllowsMessage(std::string_view message, LogLevel level) override;
  [[nodiscard]] std::string_view className() const override { return "GTMLogAllowedLevelFilter"; }

 protected:
  explicit GTMLogAllowedLevelFilter(std::set<LogLevel> allowedLevels);

 private:
  std::set<LogLevel> allowedLevels_;
};

// Lets a level and those above it, up to 4, pass.
class GTMLogMininumLevelFilter : public GTMLogAllowedLevelFilter {
 public:
  // Null when the level is not one of 0 to 4.
  [[nodiscard]] static std::shared_ptr<GTMLogMininumLevelFilter> createWithMinimumLevel(
      LogLevel level);
  [[nodiscard]] std::string_view className() const override { return "GTMLogMininumLevelFilter"; }

 protected:
  using GTMLogAllowedLevelFilter::GTMLogAllowedLevelFilter;
};

// Lets a level and those below it, down to 0, pass.
class GTMLogMaximumLevelFilter : public GTMLogAllowedLevelFilter {
 public:
  // Null when the level is not one of 0 to 4.
  [[nodiscard]] static std::shared_ptr<GTMLogMaximumLevelFilter> createWithMaximumLevel(
      LogLevel level);
  [[nodiscard]] std::string_view className() const override { return "GTMLogMaximumLevelFilter"; }

 protected:
  using GTMLogAllowedLevelFilter::GTMLogAllowedLevelFilter;
};

}  // namespace vornix
