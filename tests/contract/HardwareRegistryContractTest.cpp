#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/linux/system/LinuxHardwareRegistry.h"
#include "platform/system/HardwareRegistry.h"
#include "tests/fakes/FakeHardwareRegistry.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

using Address = std::vector<std::uint8_t>;
const Address macAddress{0x00, 0x1b, 0x63, 0x0a, 0xff, 0x07};
constexpr std::array<std::uint8_t, 16> uuid{0x56, 0x4d, 0x01, 0x23, 0x45, 0x67, 0x49, 0xab,
                                            0x8c, 0xde, 0xf0, 0x12, 0x34, 0x56, 0x78, 0x9a};

// A machine that knows everything, and one that knows nothing, on both sides of the interface.
class Machines {
 public:
  virtual ~Machines() = default;
  virtual const HardwareRegistry& complete() = 0;
  virtual const HardwareRegistry& empty() = 0;
};

class FakeMachines final : public Machines {
 public:
  const HardwareRegistry& complete() override { return complete_; }
  const HardwareRegistry& empty() override {
    empty_.serial.reset();
    empty_.uuid.reset();
    empty_.interfaces.reset();
    return empty_;
  }

 private:
  fakes::FakeHardwareRegistry complete_;
  fakes::FakeHardwareRegistry empty_;
};

class LinuxMachines final : public Machines {
 public:
  const HardwareRegistry& complete() override {
    complete_.write("sys/class/dmi/id/product_serial", "C02FAKE1234\n");
    complete_.write("sys/class/dmi/id/product_uuid", "564d0123-4567-49ab-8cde-f0123456789a\n");
    complete_.write("sys/class/net/eth0/address", "00:1b:63:0a:ff:07\n");
    complete_.write("sys/class/net/eth0/type", "1\n");
    complete_.write("proc/net/route",
                    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
                    "eth0\t00000000\t010200C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n");
    completeRegistry_ = makeLinuxHardwareRegistry(complete_.path());
    return *completeRegistry_;
  }
  const HardwareRegistry& empty() override {
    emptyRegistry_ = makeLinuxHardwareRegistry(empty_.path());
    return *emptyRegistry_;
  }

 private:
  tests::ScratchFolder complete_;
  tests::ScratchFolder empty_;
  std::unique_ptr<HardwareRegistry> completeRegistry_;
  std::unique_ptr<HardwareRegistry> emptyRegistry_;
};

template <typename M>
class HardwareRegistryContract : public testing::Test {
 protected:
  M machines_;
};

using Implementations = testing::Types<FakeMachines, LinuxMachines>;
TYPED_TEST_SUITE(HardwareRegistryContract, Implementations);

TYPED_TEST(HardwareRegistryContract, TellsTheSerialNumber) {
  EXPECT_EQ(this->machines_.complete().platformSerialNumber(), "C02FAKE1234");
}

TYPED_TEST(HardwareRegistryContract, TellsTheHostUuidWithoutAnError) {
  int errorNumber = 99;
  EXPECT_EQ(this->machines_.complete().hostUuid(errorNumber), uuid);
  EXPECT_EQ(errorNumber, 0);
}

TYPED_TEST(HardwareRegistryContract, TellsThePrimaryInterface) {
  const auto interfaces = this->machines_.complete().primaryInterfaces();
  ASSERT_TRUE(interfaces);
  ASSERT_EQ(interfaces->size(), 1U);
  EXPECT_TRUE(interfaces->front().hasController);
  EXPECT_EQ(interfaces->front().macAddress, macAddress);
}

TYPED_TEST(HardwareRegistryContract, HasNoSerialNumberWhereNothingStandsForIt) {
  EXPECT_FALSE(this->machines_.empty().platformSerialNumber());
}

TYPED_TEST(HardwareRegistryContract, SaysWhyThereIsNoHostUuid) {
  int errorNumber = 0;
  EXPECT_FALSE(this->machines_.empty().hostUuid(errorNumber));
  EXPECT_EQ(errorNumber, ENOENT);
}

TYPED_TEST(HardwareRegistryContract, HasNoAnswerWhereInterfacesCannotBeAskedFor) {
  EXPECT_FALSE(this->machines_.empty().primaryInterfaces());
}

TYPED_TEST(HardwareRegistryContract, AnswersTheSameTwice) {
  const HardwareRegistry& registry = this->machines_.complete();
  int errorNumber = 0;
  EXPECT_EQ(registry.platformSerialNumber(), registry.platformSerialNumber());
  EXPECT_EQ(registry.hostUuid(errorNumber), registry.hostUuid(errorNumber));
}

}  // namespace
}  // namespace vornix
