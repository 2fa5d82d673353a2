#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/system/LinuxHardwareRegistry.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

using Interface = HardwareRegistry::PrimaryInterface;
using Address = std::vector<std::uint8_t>;

constexpr const char* routeTitle =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT    \n";

class PrimaryInterfaceTest : public testing::Test {
 protected:
  void routes(const std::string& lines) { root_.write("proc/net/route", routeTitle + lines); }
  void ipv6Routes(const std::string& lines) { root_.write("proc/net/ipv6_route", lines); }
  void interface(const std::string& name, const std::string& address, const char* type = "1\n") {
    root_.write("sys/class/net/" + name + "/address", address);
    root_.write("sys/class/net/" + name + "/type", type);
  }
  [[nodiscard]] std::optional<std::vector<Interface>> ask() const {
    return registry_->primaryInterfaces();
  }
  [[nodiscard]] std::optional<Address> address() const {
    const auto interfaces = ask();
    return interfaces && interfaces->size() == 1 ? interfaces->front().macAddress : std::nullopt;
  }

  tests::ScratchFolder root_;
  std::unique_ptr<HardwareRegistry> registry_ = makeLinuxHardwareRegistry(root_.path());
};

TEST_F(PrimaryInterfaceTest, IsTheCheapestDefaultRoute) {
  routes(
      "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0\n"
      "eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
      "eth1\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n");
  interface("wlan0", "02:00:00:00:00:01\n");
  interface("eth0", "02:00:00:00:00:02\n");
  interface("eth1", "02:00:00:00:00:03\n");
  EXPECT_EQ(address(), (Address{2, 0, 0, 0, 0, 2}));
}

TEST_F(PrimaryInterfaceTest, IsFoundThroughIpv6WhereIpv4LeadsNowhere) {
  routes("");
  ipv6Routes(
      "fe800000000000000000000000000000 40 00000000000000000000000000000000 00 "
      "00000000000000000000000000000000 00000100 00000001 00000000 00000001     eth1\n"
      "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
      "fe800000000000000000000000000001 00000400 00000001 00000000 00000003     eth0\n"
      "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
      "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo\n");
  interface("eth0", "02:00:00:00:00:02\n");
  interface("eth1", "02:00:00:00:00:03\n");
  EXPECT_EQ(address(), (Address{2, 0, 0, 0, 0, 2}));
}

TEST_F(PrimaryInterfaceTest, IsTheMachinesOwnBehindATunnel) {
  routes(
      "tun0\t00000000\t0101A8C0\t0003\t0\t0\t50\t00000000\t0\t0\t0\n"
      "eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n");
  interface("tun0", "\n", "65534\n");
  interface("eth0", "02:00:00:00:00:02\n");
  EXPECT_EQ(address(), (Address{2, 0, 0, 0, 0, 2}));
}

TEST_F(PrimaryInterfaceTest, IsMissingWithoutADefaultRoute) {
  for (const char* lines :
       {"", "eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n",
        "lo\t00000000\t00000000\t0001\t0\t0\t0\t00000000\t0\t0\t0\n",
        "eth0\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\t0\t0\n",
        "eth0\t00000000\t00000000\t0002\t0\t0\t0\t00000000\t0\t0\t0\n",
        "../eth0\t00000000\t00000000\t0003\t0\t0\t0\t00000000\t0\t0\t0\n", "eth0\t00000000\n",
        "eth0\t00000000\t00000000\tzz\t0\t0\t0\t00000000\t0\t0\t0\n"}) {
    routes(lines);
    interface("eth0", "02:00:00:00:00:02\n");
    const auto interfaces = ask();
    ASSERT_TRUE(interfaces) << lines;
    EXPECT_TRUE(interfaces->empty()) << lines;
  }
}

TEST_F(PrimaryInterfaceTest, HasNoControllerWhereTheKernelKnowsNoSuchInterface) {
  routes("eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n");
  const auto interfaces = ask();
  ASSERT_TRUE(interfaces && interfaces->size() == 1);
  EXPECT_FALSE(interfaces->front().hasController);
}

TEST_F(PrimaryInterfaceTest, HasNoAddressWhereTheControllerTellsNone) {
  routes("eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n");
  for (const char* text : {"", "\n", "02:00:0", "02:00:zz", "0200"}) {
    interface("eth0", text);
    const auto interfaces = ask();
    ASSERT_TRUE(interfaces && interfaces->size() == 1) << text;
    EXPECT_TRUE(interfaces->front().hasController) << text;
    EXPECT_FALSE(interfaces->front().macAddress) << text;
  }
}

}  // namespace
}  // namespace vornix
