#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "logging/GTMLogger.h"
#include "platform/base/Mutex.h"
#include "platform/base/NSObject.h"

namespace vornix {

// An array as a writer: hands each message to those of its elements that are writers, in order,
// one message at a time. Any thread; an element may log to the same array again.
class GTMArrayCompositeLogWriter : public NSObject, public GTMLogWriter {
 public:
  // Null elements are skipped as those that are no writers.
  explicit GTMArrayCompositeLogWriter(std::vector<std::shared_ptr<NSObject>> elements);

  // Throws what an element throws; the elements after it do not see the message.
  void logMessage(std::string_view message, LogLevel level) override;

  [[nodiscard]] std::string_view className() const override { return "GTMArrayCompositeLogWriter"; }

 private:
  RecursiveMutex mutex_;
  const std::vector<std::shared_ptr<NSObject>> elements_;
};

}  // namespace vornix
