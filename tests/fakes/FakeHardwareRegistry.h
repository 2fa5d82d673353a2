#pragma once

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/system/HardwareRegistry.h"

namespace vornix::fakes {

// A machine as a test wants it. Set before threads read it.
class FakeHardwareRegistry final : public HardwareRegistry {
 public:
  std::optional<std::string> serial = "C02FAKE1234";
  std::optional<std::array<std::uint8_t, 16>> uuid =
      std::array<std::uint8_t, 16>{0x56, 0x4d, 0x01, 0x23, 0x45, 0x67, 0x49, 0xab,
                                   0x8c, 0xde, 0xf0, 0x12, 0x34, 0x56, 0x78, 0x9a};
  // Told where `uuid` is none.
  int uuidError = ENOENT;
  std::optional<std::vector<PrimaryInterface>> interfaces = std::vector<PrimaryInterface>{
      {.macAddress = std::vector<std::uint8_t>{0x00, 0x1b, 0x63, 0x0a, 0xff, 0x07}}};
  // How often `hostUuid` was asked.
  mutable std::atomic<int> uuidReads = 0;

  [[nodiscard]] std::optional<std::string> platformSerialNumber() const override { return serial; }
  [[nodiscard]] std::optional<std::array<std::uint8_t, 16>> hostUuid(
      int& errorNumber) const override {
    ++uuidReads;
    errorNumber = uuid ? 0 : uuidError;
    return uuid;
  }
  [[nodiscard]] std::optional<std::vector<PrimaryInterface>> primaryInterfaces() const override {
    return interfaces;
  }
};

// The one that `sharedHardwareRegistry` answers on the fake platform.
FakeHardwareRegistry& processHardware();

}  // namespace vornix::fakes
