#include "logging/GTMLogFilters.h"

#include <string>
#include <typeinfo>
#include <utility>

#include "platform/base/Text.h"
#include "platform/preferences/NSUserDefaults.h"

namespace vornix {
namespace {

constexpr std::string_view kVerboseKey = "GTMVerboseLogging";

bool saysVerbose(std::string_view text) {
  const auto trimmed = text::trim(text);
  const auto capitals = text::asciiUppercase(trimmed);
  return capitals.starts_with('Y') || capitals.starts_with('T') || text::integerValue(trimmed) != 0;
}

bool isVerbose(const NSProcessInfo& processInfo, const std::function<bool()>& verboseDefault) {
  const auto variable = processInfo.environment(kVerboseKey);
  return variable ? saysVerbose(*variable) : verboseDefault();
}

// Every level from the first to the last; empty unless both are levels.
std::set<LogLevel> levelRange(LogLevel first, LogLevel last) {
  std::set<LogLevel> levels;
  if (first < LogLevelUnknown || last > LogLevelAssert) return levels;
  for (LogLevel level = first; level <= last; ++level) levels.insert(level);
  return levels;
}

bool isUsable(const std::set<LogLevel>& levels) {
  return !levels.empty() && *levels.begin() >= LogLevelUnknown &&
         *levels.rbegin() <= LogLevelAssert;
}

}  // namespace

bool GTMLogNoFilter::filterAllowsMessage(std::string_view /*message*/, LogLevel /*level*/) {
  return true;
}

GTMLogLevelFilter::GTMLogLevelFilter(const NSProcessInfo& processInfo,
                                     std::function<bool()> verboseDefault,
                                     NSNotificationCenter& center)
    : center_(center), verboseLoggingEnabled_(std::make_shared<std::atomic<bool>>(false)) {
  const auto update = [enabled = verboseLoggingEnabled_, &processInfo,
                       verboseDefault = std::move(verboseDefault)] {
    *enabled = isVerbose(processInfo, verboseDefault);
  };
  observer_ = center_.addObserver(NSUserDefaultsDidChangeNotification,
                                  [update](const NSNotification&) { update(); });
  update();
}

GTMLogLevelFilter::~GTMLogLevelFilter() {
  center_.removeObserver(observer_);
}

std::shared_ptr<GTMLogLevelFilter> GTMLogLevelFilter::create() {
  const auto verboseDefault = [] {
    return NSUserDefaults::standardUserDefaults()->boolForKey(kVerboseKey);
  };
  return std::make_shared<GTMLogLevelFilter>(NSProcessInfo::processInfo(), verboseDefault,
                                             NSNotificationCenter::defaultCenter());
}

bool GTMLogLevelFilter::dropsLevel(LogLevel level) const {
  // A subclass may let more pass.
  return level == LogLevelDebug && typeid(*this) == typeid(GTMLogLevelFilter);
}

bool GTMLogLevelFilter::filterAllowsMessage(std::string_view /*message*/, LogLevel level) {
  if (level == LogLevelDebug) return false;
  return level != LogLevelInfo || *verboseLoggingEnabled_;
}

std::shared_ptr<GTMLogAllowedLevelFilter> GTMLogAllowedLevelFilter::createWithAllowedLevels(
    const std::optional<std::set<LogLevel>>& allowedLevels) {
  if (!allowedLevels || !isUsable(*allowedLevels)) return nullptr;
  return std::shared_ptr<GTMLogAllowedLevelFilter>(new GTMLogAllowedLevelFilter(*allowedLevels));
}

std::shared_ptr<GTMLogAllowedLevelFilter> GTMLogAllowedLevelFilter::create() {
  return createWithAllowedLevels(levelRange(LogLevelUnknown, LogLevelAssert));
}

GTMLogAllowedLevelFilter::GTMLogAllowedLevelFilter(std::set<LogLevel> allowedLevels)
    : allowedLevels_(std::move(allowedLevels)) {}

bool GTMLogAllowedLevelFilter::filterAllowsMessage(std::string_view /*message*/, LogLevel level) {
  return allowedLevels_.contains(level);
}

std::shared_ptr<GTMLogMininumLevelFilter> GTMLogMininumLevelFilter::createWithMinimumLevel(
    LogLevel level) {
  auto levels = levelRange(level, LogLevelAssert);
  if (!isUsable(levels)) return nullptr;
  return std::shared_ptr<GTMLogMininumLevelFilter>(new GTMLogMininumLevelFilter(std::move(levels)));
}

std::shared_ptr<GTMLogMaximumLevelFilter> GTMLogMaximumLevelFilter::createWithMaximumLevel(
    LogLevel level) {
  auto levels = levelRange(LogLevelUnknown, level);
  if (!isUsable(levels)) return nullptr;
  return std::shared_ptr<GTMLogMaximumLevelFilter>(new GTMLogMaximumLevelFilter(std::move(levels)));
}

}  // namespace vornix
