#include "logging/GTMLogASLWriter.h"

#include <array>
#include <cstdint>
#include <map>
#include <utility>

namespace vornix {
namespace {

using Clients = std::map<std::string, std::shared_ptr<GTMLoggerASLClient>, std::less<>>;

Clients& clientsOfThread() {
  static thread_local Clients clients;
  return clients;
}

int priorityOfLevel(LogLevel level) {
  constexpr std::array<int, 5> kPriorities{5, 5, 5, 3, 1};
  // A negative level is a large number and so outside the table too.
  const auto index = static_cast<std::uint32_t>(level);
  return index < kPriorities.size() ? kPriorities.at(index) : 6;
}

}  // namespace

GTMLogASLWriter::GTMLogASLWriter(ClientClass clientClass, std::optional<std::string> facility)
    : aslClientClass_(clientClass ? std::move(clientClass)
                                  : ClientClass(&GTMLoggerASLClient::createWithFacility)),
      facility_(std::move(facility)) {}

std::shared_ptr<GTMLogASLWriter> GTMLogASLWriter::aslWriter() {
  return std::make_shared<GTMLogASLWriter>();
}

std::shared_ptr<GTMLogASLWriter> GTMLogASLWriter::aslWriterWithFacility(
    std::optional<std::string> facility) {
  return std::make_shared<GTMLogASLWriter>(nullptr, std::move(facility));
}

std::shared_ptr<GTMLoggerASLClient> GTMLogASLWriter::clientOfThread() const {
  const std::string key = "GTMLoggerASLClient" + (facility_ ? "-" + *facility_ : std::string());
  Clients& clients = clientsOfThread();
  if (const auto found = clients.find(key); found != clients.end()) return found->second;
  auto client = aslClientClass_(facility_);
  if (client != nullptr) clients.emplace(key, client);
  return client;
}

void GTMLogASLWriter::logMessage(std::string_view message, LogLevel level) {
  if (const auto client = clientOfThread()) client->log(message, priorityOfLevel(level));
}

}  // namespace vornix
