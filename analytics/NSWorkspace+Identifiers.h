#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/desktop/NSWorkspace.h"
#include "platform/system/HardwareRegistry.h"
#include "platform/system/NSProcessInfo.h"

// What identifies this machine and its user. Any thread.
namespace vornix {

// The machine's serial number; none when it cannot be read.
[[nodiscard]] std::optional<std::string> systemIdentifier(
    const NSWorkspace& self, const HardwareRegistry& registry = sharedHardwareRegistry());

// The machine's UUID in capital letters, asked for once a process. None, and a debug line, when it
// cannot be read; the next call then asks again.
[[nodiscard]] std::optional<std::string> hostUUID(const NSWorkspace& self);

// The hardware address of the primary network interface as 12 lower-case digits; none without such
// an interface, zeros where its controller tells none. Writes what it reads to standard error.
[[nodiscard]] std::optional<std::string> primaryMACAddress(
    const NSWorkspace& self, const HardwareRegistry& registry = sharedHardwareRegistry());

// 32 hexadecimal digits that stay the same for one user on one machine, and tell neither.
[[nodiscard]] std::string userIdentifier(
    const NSWorkspace& self, const HardwareRegistry& registry = sharedHardwareRegistry(),
    const NSProcessInfo& process = NSProcessInfo::processInfo());

// Keeps the first UUID that any thread reads. Any thread.
class HostUuidCache {
 public:
  HostUuidCache() = default;
  HostUuidCache(const HostUuidCache&) = delete;
  HostUuidCache& operator=(const HostUuidCache&) = delete;
  ~HostUuidCache();

  [[nodiscard]] std::optional<std::string> hostUuid(const HardwareRegistry& registry);

 private:
  std::atomic<const std::string*> text_ = nullptr;
};

}  // namespace vornix
