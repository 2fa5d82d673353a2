#include <utility>
#include <vector>

#include "logging/GTMArrayCompositeLogWriter.h"
#include "logging/GTMFileHandleLogWriter.h"
#include "logging/GTMLogASLWriter.h"
#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "logging/GTMLogger.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {
namespace {

template <typename Build>
std::shared_ptr<GTMLogger> nullWhenThrowing(const Build& build) {
  try {
    return build();
  } catch (...) {
    return nullptr;
  }
}

std::shared_ptr<GTMLogger> standardLoggerWithWriter(std::shared_ptr<GTMLogWriter> writer) {
  auto logger = GTMLogger::standardLogger();
  if (logger != nullptr) logger->setWriter(std::move(writer));
  return logger;
}

std::shared_ptr<GTMLogWriter> standardErrorWriter() {
  return std::make_shared<GTMFileHandleLogWriter>(NSFileHandle::fileHandleWithStandardError());
}

std::shared_ptr<GTMLogWriter> standardOutputAndErrorWriter() {
  const auto formatter = std::make_shared<GTMLogBasicFormatter>();
  const auto output = GTMLogger::loggerWithWriter(
      nullptr, formatter, GTMLogMaximumLevelFilter::createWithMaximumLevel(LogLevelInfo));
  const auto error =
      GTMLogger::loggerWithWriter(standardErrorWriter(), formatter,
                                  GTMLogMininumLevelFilter::createWithMinimumLevel(LogLevelError));
  const auto both = std::make_shared<GTMArrayCompositeLogWriter>(
      std::vector<std::shared_ptr<NSObject>>{output, error});
  return GTMLogger::loggerWithWriter(both, formatter, std::make_shared<GTMLogNoFilter>());
}

}  // namespace

std::shared_ptr<GTMLogger> GTMLogger::standardLogger() {
  return nullWhenThrowing([] {
    return loggerWithWriter(nullptr, GTMLogStandardFormatter::create(),
                            GTMLogLevelFilter::create());
  });
}

std::shared_ptr<GTMLogger> GTMLogger::standardLoggerWithStderr() {
  return nullWhenThrowing([] { return standardLoggerWithWriter(standardErrorWriter()); });
}

std::shared_ptr<GTMLogger> GTMLogger::standardLoggerWithStdoutAndStderr() {
  return nullWhenThrowing([] { return standardLoggerWithWriter(standardOutputAndErrorWriter()); });
}

std::shared_ptr<GTMLogger> GTMLogger::standardLoggerWithPath(std::optional<std::string_view> path) {
  return nullWhenThrowing([path]() -> std::shared_ptr<GTMLogger> {
    auto file = GTMFileHandleLogWriter::fileHandleForLoggingAtPath(path, 0644);
    return file != nullptr ? standardLoggerWithWriter(std::move(file)) : nullptr;
  });
}

std::shared_ptr<GTMLogger> GTMLogger::standardLoggerWithASL() {
  auto logger = standardLoggerWithWriter(GTMLogASLWriter::aslWriter());
  if (logger != nullptr) logger->setFormatter(std::make_shared<GTMLogASLFormatter>());
  return logger;
}

}  // namespace vornix
