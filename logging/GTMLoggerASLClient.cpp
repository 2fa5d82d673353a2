#include "logging/GTMLoggerASLClient.h"

#include <utility>

namespace vornix {

std::shared_ptr<GTMLoggerASLClient> GTMLoggerASLClient::createWithFacility(
    const std::optional<std::string>& facility) {
  auto client = openSystemLog(facility);
  if (client == nullptr) return nullptr;
  return std::shared_ptr<GTMLoggerASLClient>(new GTMLoggerASLClient(std::move(client)));
}

GTMLoggerASLClient::GTMLoggerASLClient(std::unique_ptr<SystemLogClient> client)
    : client_(std::move(client)) {}

void GTMLoggerASLClient::log(std::string_view message, int level) {
  if (client_ != nullptr) client_->log(level, message);
}

}  // namespace vornix
