#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "logging/GTMLogger.h"
#include "logging/GTMLoggerASLClient.h"
#include "platform/base/NSObject.h"

namespace vornix {

// Writes to the system's log. Each thread has one client a facility, shared by all writers and
// living as long as the thread. Any thread.
class GTMLogASLWriter : public NSObject, public GTMLogWriter {
 public:
  // Makes a client for a facility; null when it cannot be had.
  using ClientClass =
      std::function<std::shared_ptr<GTMLoggerASLClient>(const std::optional<std::string>&)>;

  // An empty class means `GTMLoggerASLClient`.
  explicit GTMLogASLWriter(ClientClass clientClass = nullptr,
                           std::optional<std::string> facility = std::nullopt);

  [[nodiscard]] static std::shared_ptr<GTMLogASLWriter> aslWriter();
  [[nodiscard]] static std::shared_ptr<GTMLogASLWriter> aslWriterWithFacility(
      std::optional<std::string> facility);

  // Without a client the message is lost, and the next one tries again.
  void logMessage(std::string_view message, LogLevel level) override;

  [[nodiscard]] std::string_view className() const override { return "GTMLogASLWriter"; }

 private:
  [[nodiscard]] std::shared_ptr<GTMLoggerASLClient> clientOfThread() const;

  ClientClass aslClientClass_;
  std::optional<std::string> facility_;
};

}  // namespace vornix
