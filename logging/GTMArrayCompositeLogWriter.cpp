#include "logging/GTMArrayCompositeLogWriter.h"

#include <utility>

namespace vornix {

GTMArrayCompositeLogWriter::GTMArrayCompositeLogWriter(
    std::vector<std::shared_ptr<NSObject>> elements)
    : elements_(std::move(elements)) {}

void GTMArrayCompositeLogWriter::logMessage(std::string_view message, LogLevel level) {
  const Lock lock(mutex_);
  for (const auto& element : elements_) {
    if (auto* writer = dynamic_cast<GTMLogWriter*>(element.get())) {
      writer->logMessage(message, level);
    }
  }
}

}  // namespace vornix
