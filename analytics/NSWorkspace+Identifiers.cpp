#include "analytics/NSWorkspace+Identifiers.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>

#include "foundation/NSString+Hashing.h"
#include "logging/GTMLogger.h"
#include "platform/base/Format.h"

namespace vornix {
namespace {

using Uuid = std::array<std::uint8_t, 16>;
using MacAddress = std::array<std::uint8_t, 6>;

std::string uuidText(const Uuid& uuid) {
  std::string text;
  for (std::size_t index = 0; index < uuid.size(); ++index) {
    if (index == 4 || index == 6 || index == 8 || index == 10) text += '-';
    text += text::format("%02X", uuid[index]);
  }
  return text;
}

void dump(const std::vector<std::uint8_t>& bytes) {
  Data data(bytes.size());
  std::transform(bytes.begin(), bytes.end(), data.begin(),
                 [](std::uint8_t byte) { return std::byte{byte}; });
  const auto line = Value(std::move(data)).description() + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

std::string macText(const MacAddress& address) {
  std::string text;
  for (const auto byte : address) text += text::format("%02x", byte);
  return text;
}

}  // namespace

std::optional<std::string> systemIdentifier(const NSWorkspace& /*self*/,
                                            const HardwareRegistry& registry) {
  return registry.platformSerialNumber();
}

std::optional<std::string> hostUUID(const NSWorkspace& /*self*/) {
  static auto& cache = *new HostUuidCache;
  return cache.hostUuid(sharedHardwareRegistry());
}

std::optional<std::string> primaryMACAddress(const NSWorkspace& /*self*/,
                                             const HardwareRegistry& registry) {
  const auto interfaces = registry.primaryInterfaces();
  if (!interfaces) return std::nullopt;
  MacAddress address{};
  bool lastHasController = false;
  for (const auto& interface : *interfaces) {
    lastHasController = interface.hasController;
    if (!interface.hasController || !interface.macAddress) continue;
    dump(*interface.macAddress);
    const auto length = std::min(interface.macAddress->size(), address.size());
    std::copy_n(interface.macAddress->begin(), length, address.begin());
  }
  return lastHasController ? std::optional(macText(address)) : std::nullopt;
}

std::string userIdentifier(const NSWorkspace& self, const HardwareRegistry& registry,
                           const NSProcessInfo& process) {
  return md5Hash(text::format("%@%@", systemIdentifier(self, registry), process.userName()));
}

HostUuidCache::~HostUuidCache() {
  delete text_.load();
}

std::optional<std::string> HostUuidCache::hostUuid(const HardwareRegistry& registry) {
  if (const auto* known = text_.load()) return *known;
  int errorNumber = 0;
  const auto uuid = registry.hostUuid(errorNumber);
  if (!uuid) {
    GTMLogger::sharedLogger()->logDebug("getHostUUID: unable to determine UUID for host. Error: %d",
                                        errorNumber);
    return std::nullopt;
  }
  auto own = std::make_unique<const std::string>(uuidText(*uuid));
  const std::string* winner = nullptr;
  if (text_.compare_exchange_strong(winner, own.get())) winner = own.release();
  return *winner;
}

}  // namespace vornix
