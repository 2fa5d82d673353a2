#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vornix {

// What the machine says of itself. Any thread.
class HardwareRegistry {
 public:
  virtual ~HardwareRegistry() = default;

  // The machine's serial number, or an id that stands for it; none when there is neither.
  [[nodiscard]] virtual std::optional<std::string> platformSerialNumber() const = 0;
  // 16 bytes. None on failure; `errorNumber` then says why.
  [[nodiscard]] virtual std::optional<std::array<std::uint8_t, 16>> hostUuid(
      int& errorNumber) const = 0;

  // One primary network interface. `macAddress` has as many bytes as its controller tells (usually
  // 6), and is none where it tells none; `hasController` is false where there is no controller.
  struct PrimaryInterface {
    bool hasController = true;
    std::optional<std::vector<std::uint8_t>> macAddress;
  };
  // None when interfaces cannot be asked for at all.
  [[nodiscard]] virtual std::optional<std::vector<PrimaryInterface>> primaryInterfaces() const = 0;
};

[[nodiscard]] const HardwareRegistry& sharedHardwareRegistry();

}  // namespace vornix
