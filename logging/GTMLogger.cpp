#include "logging/GTMLogger.h"

#include <utility>

#include "logging/GTMFileHandleLogWriter.h"
#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "platform/base/Text.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {
namespace {

struct SharedReference {
  Mutex mutex;
  std::shared_ptr<GTMLogger> logger VORNIX_GUARDED_BY(mutex);
};

// Never destroyed: threads may log until the process ends.
SharedReference& shared() {
  static auto& reference = *new SharedReference;
  return reference;
}

std::shared_ptr<GTMLogger> currentSharedLogger() {
  const Lock lock(shared().mutex);
  return shared().logger;
}

std::shared_ptr<GTMLogger> errorsOnlyLogger() {
  return std::make_shared<GTMLogger>(
      nullptr, nullptr, GTMLogMininumLevelFilter::createWithMinimumLevel(LogLevelError));
}

std::shared_ptr<GTMLogger> buildSharedLogger() {
  auto logger = GTMLogger::standardLogger();
  return logger != nullptr ? logger : errorsOnlyLogger();
}

std::optional<std::string_view> functionText(const char* function) {
  if (function == nullptr || !text::isValidUtf8(function)) return std::nullopt;
  return function;
}

}  // namespace

GTMLogger::GTMLogger(std::shared_ptr<GTMLogWriter> writer,
                     std::shared_ptr<GTMLogFormatter> formatter,
                     std::shared_ptr<GTMLogFilter> filter) {
  setWriter(std::move(writer));
  setFormatter(std::move(formatter));
  setFilter(std::move(filter));
}

std::shared_ptr<GTMLogger> GTMLogger::sharedLogger() {
  static thread_local bool building = false;
  if (auto logger = currentSharedLogger()) return logger;
  // What the standard logger is made of may itself have something to say, on this very thread.
  if (building) return errorsOnlyLogger();
  // Built without the lock: its parts take locks of their own, under which others may log.
  building = true;
  auto built = buildSharedLogger();
  building = false;
  const Lock lock(shared().mutex);
  if (shared().logger == nullptr) shared().logger = std::move(built);
  return shared().logger;
}

void GTMLogger::setSharedLogger(std::shared_ptr<GTMLogger> logger) {
  // The old logger ends after the lock is left, since its end may log.
  const Lock lock(shared().mutex);
  shared().logger.swap(logger);
}

std::shared_ptr<GTMLogger> GTMLogger::loggerWithWriter(std::shared_ptr<GTMLogWriter> writer,
                                                       std::shared_ptr<GTMLogFormatter> formatter,
                                                       std::shared_ptr<GTMLogFilter> filter) {
  return std::make_shared<GTMLogger>(std::move(writer), std::move(formatter), std::move(filter));
}

std::shared_ptr<GTMLogger> GTMLogger::logger() {
  return std::make_shared<GTMLogger>();
}

std::shared_ptr<GTMLogWriter> GTMLogger::writer() const {
  const Lock lock(mutex_);
  return writer_;
}

std::shared_ptr<GTMLogFormatter> GTMLogger::formatter() const {
  const Lock lock(mutex_);
  return formatter_;
}

std::shared_ptr<GTMLogFilter> GTMLogger::filter() const {
  const Lock lock(mutex_);
  return filter_;
}

// What is replaced by these three ends after the lock is left, since its end may log.
void GTMLogger::setWriter(std::shared_ptr<GTMLogWriter> writer) {
  if (writer == nullptr) {
    writer = std::make_shared<GTMFileHandleLogWriter>(NSFileHandle::fileHandleWithStandardOutput());
  }
  const Lock lock(mutex_);
  writer_.swap(writer);
}

void GTMLogger::setFormatter(std::shared_ptr<GTMLogFormatter> formatter) {
  if (formatter == nullptr) formatter = std::make_shared<GTMLogBasicFormatter>();
  const Lock lock(mutex_);
  formatter_.swap(formatter);
}

void GTMLogger::setFilter(std::shared_ptr<GTMLogFilter> filter) {
  if (filter == nullptr) filter = std::make_shared<GTMLogNoFilter>();
  const Lock lock(mutex_);
  filter_.swap(filter);
}

void GTMLogger::logInternalFunc(const char* function, std::optional<std::string_view> format,
                                const text::FormatArguments* arguments, LogLevel level) noexcept {
  try {
    const auto formatter = this->formatter();
    // Nearly all messages are debug messages that the standard filter drops.
    if (formatter->onlyBuildsText() && filter()->dropsLevel(level)) return;
    const auto message = formatter->stringForFunc(functionText(function), format, arguments, level);
    if (!message || !filter()->filterAllowsMessage(*message, level)) return;
    writer()->logMessage(*message, level);
    // NOLINTNEXTLINE(bugprone-empty-catch): a message that cannot be logged is lost, nothing else.
  } catch (...) {
  }
}

void GTMLogger::logMessage(std::string_view message, LogLevel level) {
  switch (level) {
    case LogLevelDebug:
      return logDebug("%@", message);
    case LogLevelInfo:
      return logInfo("%@", message);
    case LogLevelError:
      return logError("%@", message);
    case LogLevelAssert:
      return logAssert("%@", message);
    default:
      return;
  }
}

}  // namespace vornix
