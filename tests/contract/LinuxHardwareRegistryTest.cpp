#include "platform/linux/system/LinuxHardwareRegistry.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "platform/linux/system/MachineIdentity.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

constexpr const char* machineId = "0f4e2d6c8ba94c13a5d7e1f20b3c4d5e";

class LinuxHardwareRegistryTest : public testing::Test {
 protected:
  [[nodiscard]] std::optional<std::array<std::uint8_t, 16>> hostUuid() {
    return registry_->hostUuid(errorNumber_);
  }
  void serial(std::string_view text) { root_.write("sys/class/dmi/id/product_serial", text); }
  void firmwareUuid(std::string_view text) { root_.write("sys/class/dmi/id/product_uuid", text); }
  void machine(std::string_view text) { root_.write("etc/machine-id", text); }

  tests::ScratchFolder root_;
  std::unique_ptr<HardwareRegistry> registry_ = makeLinuxHardwareRegistry(root_.path());
  int errorNumber_ = 0;
};

TEST_F(LinuxHardwareRegistryTest, ReadsTheFirmwareSerialNumberWithoutItsLineEnd) {
  serial("  PF1A2B3C \n");
  machine(machineId);
  EXPECT_EQ(registry_->platformSerialNumber(), "PF1A2B3C");
}

TEST_F(LinuxHardwareRegistryTest, ReadsTheDeviceTreeSerialNumberWithoutItsZero) {
  root_.write("proc/device-tree/serial-number", std::string_view("10000000abcdef12\0", 17));
  EXPECT_EQ(registry_->platformSerialNumber(), "10000000abcdef12");
}

// The value was computed by another HMAC, which agrees with `systemd-id128`.
TEST_F(LinuxHardwareRegistryTest, DerivesTheSerialNumberFromTheMachineIdAsSystemdDoes) {
  machine(std::string(machineId) + "\n");
  EXPECT_EQ(registry_->platformSerialNumber(), "feb46ad31c964b1cb3c0d6add9396468");
}

TEST_F(LinuxHardwareRegistryTest, TreatsPlaceholdersOfTheFirmwareAsNoSerialNumber) {
  for (const char* placeholder :
       {"To be filled by O.E.M.", "to be filled by o.e.m.", "Default string", "None", "0",
        "00000000", "0000-0000", "XXXXXXXX", "..........", "Not Specified", "System Serial Number",
        "N/A", "0123456789", "", " \n", "\x01\x02", "\xff\xff"}) {
    serial(placeholder);
    EXPECT_FALSE(registry_->platformSerialNumber()) << placeholder;
  }
}

TEST_F(LinuxHardwareRegistryTest, KeepsSerialNumbersThatOnlyLookLikePlaceholders) {
  for (const char* value : {"VMware-56 4d 01 23", "0000-0001", "NONE-7", "ec2a1b2c-1111", "10"}) {
    serial(value);
    EXPECT_EQ(registry_->platformSerialNumber(), value);
  }
}

TEST_F(LinuxHardwareRegistryTest, FallsBackFromAPlaceholderUuidToTheMachineId) {
  machine(machineId);
  for (const char* placeholder :
       {"00000000-0000-0000-0000-000000000000", "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF",
        "03000200-0400-0500-0006-000700080009", "Not Settable", "", "564d0123"}) {
    firmwareUuid(placeholder);
    EXPECT_EQ(hostUuid(), parseId128(machineId)) << placeholder;
    EXPECT_EQ(errorNumber_, 0);
  }
}

TEST_F(LinuxHardwareRegistryTest, ReadsTheMachineIdOfTheMessageBusWhereTheSystemHasNone) {
  root_.write("var/lib/dbus/machine-id", machineId);
  EXPECT_EQ(hostUuid(), parseId128(machineId));
  EXPECT_EQ(errorNumber_, 0);
}

TEST_F(LinuxHardwareRegistryTest, SaysInvalidArgumentForADamagedMachineId) {
  for (const char* damaged :
       {"uninitialized\n", "", "0f4e2d6c8ba94c13a5d7e1f20b3c4d5",
        "zz4e2d6c8ba94c13a5d7e1f20b3c4d5e", "00000000000000000000000000000000"}) {
    machine(damaged);
    EXPECT_FALSE(hostUuid()) << damaged;
    EXPECT_EQ(errorNumber_, EINVAL) << damaged;
    EXPECT_FALSE(registry_->platformSerialNumber()) << damaged;
  }
}

TEST(MachineIdentity, ReadsIdsWithHyphensOnlyWhereAUuidHasThem) {
  EXPECT_EQ(parseId128("0F4E2D6C-8BA9-4C13-A5D7-E1F20B3C4D5E"), parseId128(machineId));
  EXPECT_FALSE(parseId128("0f4e2d6c8-ba9-4c13-a5d7-e1f20b3c4d5e"));
  EXPECT_FALSE(parseId128("0f4e2d6c-8ba9-4c13-a5d7-e1f20b3c4d5-"));
  EXPECT_FALSE(parseId128("------------------------------------"));
}

TEST(MachineIdentity, MarksTheDerivedIdAsARandomUuid) {
  const Id128 id = applicationSpecificId(*parseId128(machineId));
  EXPECT_EQ(id[6] >> 4U, 4U);
  EXPECT_EQ(id[8] >> 6U, 2U);
  EXPECT_NE(id, applicationSpecificId(*parseId128("0f4e2d6c8ba94c13a5d7e1f20b3c4d5f")));
}

TEST(SharedHardwareRegistry, IsOneAndAnswersForThisMachine) {
  const HardwareRegistry& registry = sharedHardwareRegistry();
  EXPECT_EQ(&registry, &sharedHardwareRegistry());
  int errorNumber = 0;
  EXPECT_EQ(registry.hostUuid(errorNumber).has_value(), errorNumber == 0);
}

}  // namespace
}  // namespace vornix
