#include "platform/linux/system/LinuxHardwareRegistry.h"

#include <net/if_arp.h>

#include <cerrno>
#include <charconv>
#include <string_view>
#include <utility>

#include "platform/base/Text.h"
#include "platform/linux/system/DefaultRoutes.h"
#include "platform/linux/system/KernelFile.h"
#include "platform/linux/system/MachineIdentity.h"

namespace vornix {
namespace {

// Bytes as "00:1b:63:0a:ff:07"; none for any other text.
std::optional<std::vector<std::uint8_t>> parseHardwareAddress(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  for (const std::string& piece : text::split(text, ":")) {
    std::uint8_t byte = 0;
    const char* end = piece.data() + piece.size();
    const auto result = std::from_chars(piece.data(), end, byte, 16);
    if (piece.size() != 2 || result.ec != std::errc() || result.ptr != end) {
      return std::nullopt;
    }
    bytes.push_back(byte);
  }
  return bytes;
}

class LinuxHardwareRegistry final : public HardwareRegistry {
 public:
  explicit LinuxHardwareRegistry(std::string root) : root_(std::move(root)) {}

  [[nodiscard]] std::optional<std::string> platformSerialNumber() const override;
  [[nodiscard]] std::optional<std::array<std::uint8_t, 16>> hostUuid(
      int& errorNumber) const override;
  [[nodiscard]] std::optional<std::vector<PrimaryInterface>> primaryInterfaces() const override;

 private:
  // Without the zeros and the white space at its end.
  [[nodiscard]] std::optional<std::string> line(std::string_view path, int* error = nullptr) const;
  [[nodiscard]] std::optional<Id128> machineId(int& errorNumber) const;
  [[nodiscard]] bool isEthernet(const std::string& interface) const;
  [[nodiscard]] PrimaryInterface describe(const std::string& interface) const;

  std::string root_;
};

std::optional<std::string> LinuxHardwareRegistry::line(std::string_view path, int* error) const {
  auto contents = readKernelFile(root_ + std::string(path), error);
  if (!contents) {
    return std::nullopt;
  }
  contents->resize(contents->find_last_not_of('\0') + 1);
  return std::string(text::trim(*contents));
}

std::optional<Id128> LinuxHardwareRegistry::machineId(int& errorNumber) const {
  errorNumber = 0;
  for (const char* path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
    int failure = 0;
    const auto text = line(path, &failure);
    if (const auto id = text ? parseId128(*text) : std::nullopt) {
      errorNumber = 0;
      return id;
    }
    // "uninitialized", empty, or damaged: the file is there, the id is not.
    failure = text ? EINVAL : failure;
    errorNumber = errorNumber == 0 ? failure : errorNumber;
  }
  return std::nullopt;
}

std::optional<std::string> LinuxHardwareRegistry::platformSerialNumber() const {
  for (const char* path : {"/sys/class/dmi/id/product_serial", "/proc/device-tree/serial-number"}) {
    auto serial = line(path);
    if (serial && !isFirmwarePlaceholder(*serial)) {
      return serial;
    }
  }
  int ignored = 0;
  const auto machine = machineId(ignored);
  return machine ? std::optional(hexadecimal(applicationSpecificId(*machine))) : std::nullopt;
}

std::optional<std::array<std::uint8_t, 16>> LinuxHardwareRegistry::hostUuid(
    int& errorNumber) const {
  errorNumber = 0;
  const auto text = line("/sys/class/dmi/id/product_uuid");
  const auto firmware = text ? parseId128(*text) : std::nullopt;
  return firmware && !isFirmwarePlaceholder(*firmware) ? firmware : machineId(errorNumber);
}

bool LinuxHardwareRegistry::isEthernet(const std::string& interface) const {
  const auto type = line("/sys/class/net/" + interface + "/type");
  return !type || text::integerValue(*type) == ARPHRD_ETHER;
}

HardwareRegistry::PrimaryInterface LinuxHardwareRegistry::describe(
    const std::string& interface) const {
  const auto address = line("/sys/class/net/" + interface + "/address");
  return {.hasController = address.has_value(),
          .macAddress = address ? parseHardwareAddress(*address) : std::nullopt};
}

std::optional<std::vector<HardwareRegistry::PrimaryInterface>>
LinuxHardwareRegistry::primaryInterfaces() const {
  const auto interfaces = defaultRouteInterfaces(readKernelFile(root_ + "/proc/net/route"),
                                                 readKernelFile(root_ + "/proc/net/ipv6_route"));
  if (!interfaces) {
    return std::nullopt;
  }
  // A tunnel may be the way out; the machine's own interface is behind it.
  for (const std::string& interface : *interfaces) {
    if (isEthernet(interface)) {
      return std::vector{describe(interface)};
    }
  }
  return std::vector<PrimaryInterface>();
}

}  // namespace

std::unique_ptr<HardwareRegistry> makeLinuxHardwareRegistry(std::string root) {
  return std::make_unique<LinuxHardwareRegistry>(std::move(root));
}

const HardwareRegistry& sharedHardwareRegistry() {
  static const auto& registry = *new LinuxHardwareRegistry("");
  return registry;
}

}  // namespace vornix
