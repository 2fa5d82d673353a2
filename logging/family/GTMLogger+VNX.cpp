#include "logging/family/GTMLogger+VNX.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "locations/VXPaths.h"
#include "logging/GTMArrayCompositeLogWriter.h"
#include "logging/GTMFileHandleLogWriter.h"
#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "logging/GTMLogger.h"
#include "platform/base/Format.h"
#include "platform/base/Text.h"
#include "platform/files/NSPathUtilities.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {
namespace {

constexpr std::uint32_t kDefaultMode = 0666;

std::shared_ptr<GTMLogger> loggerFromDebugToAssert() {
  return GTMLogger::loggerWithWriter(
      nullptr, GTMLogStandardFormatter::create(),
      GTMLogMininumLevelFilter::createWithMinimumLevel(LogLevelDebug));
}

std::shared_ptr<NSObject> writerTo(std::shared_ptr<NSFileHandle> fileHandle) {
  return std::make_shared<GTMFileHandleLogWriter>(std::move(fileHandle));
}

}  // namespace

std::string vnx_pathForLog() {
  return vnx_pathForLog(VXPaths::sharedInstance().vnxLogFolderPath());
}

std::string vnx_pathForLog(const std::optional<std::string>& logFolder) {
  return stringByExpandingTildeInPath(text::format("%@/%@.log", logFolder, text::productName));
}

void initVNXLogger() {
  initVNXLogger(vnx_pathForLog());
}

void initVNXLogger(const std::string& path) {
  const auto logger = loggerFromDebugToAssert();
  std::vector<std::shared_ptr<NSObject>> writers{
      writerTo(NSFileHandle::fileHandleWithStandardOutput())};
  if (auto file = NSFileHandle::openForUpdatingAtEnd(path, kDefaultMode)) {
    writers.push_back(writerTo(std::move(file)));
  } else {
    GTMLogger::sharedLogger()->logDebug(
        "Failed to create file handle for file %@. Will write to stdout.", path);
  }
  logger->setWriter(std::make_shared<GTMArrayCompositeLogWriter>(std::move(writers)));
  GTMLogger::setSharedLogger(logger);
}

}  // namespace vornix
