#include "analytics/NSWorkspace+Identifiers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <barrier>
#include <thread>

#include "foundation/NSString+Hashing.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/FakeHardwareRegistry.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using Interface = HardwareRegistry::PrimaryInterface;
using Bytes = std::vector<std::uint8_t>;

class Identifiers : public testing::Test {
 protected:
  // What it answers, and what it writes to standard error.
  std::pair<std::optional<std::string>, std::string> macAddress() {
    testing::internal::CaptureStderr();
    auto address = primaryMACAddress(workspace_, registry_);
    return {std::move(address), testing::internal::GetCapturedStderr()};
  }

  fakes::FakeApplicationService applications_;
  NSWorkspace workspace_{applications_};
  fakes::FakeHardwareRegistry registry_;
  fakes::FakeProcessInfo process_;
  fakes::ScopedSharedLogger log_;
};

TEST_F(Identifiers, NamesTheMachineByItsSerialNumber) {
  EXPECT_EQ(systemIdentifier(workspace_, registry_), registry_.serial);
  registry_.serial.reset();
  EXPECT_EQ(systemIdentifier(workspace_, registry_), std::nullopt);
}

TEST_F(Identifiers, HashesSerialNumberAndLoginNameIntoTheUserIdentifier) {
  EXPECT_EQ(userIdentifier(workspace_, registry_, process_), md5Hash("C02FAKE1234ada"));
}

TEST_F(Identifiers, KeepsTheUserIdentifierAcrossLaunchesAndChangesItWithTheUser) {
  const auto first = userIdentifier(workspace_, registry_, process_);
  EXPECT_EQ(userIdentifier(workspace_, fakes::FakeHardwareRegistry(), fakes::FakeProcessInfo()),
            first);
  process_.user = "grace";
  EXPECT_NE(userIdentifier(workspace_, registry_, process_), first);
}

TEST_F(Identifiers, HashesTheTextOfAMissingObjectWhereThereIsNoSerialNumber) {
  registry_.serial.reset();
  const auto identifier = userIdentifier(workspace_, registry_, process_);
  EXPECT_EQ(identifier, md5Hash("(null)ada"));
  EXPECT_THAT(identifier, testing::MatchesRegex("[0-9a-f]{32}"));
}

TEST_F(Identifiers, WritesTheHostUuidInCapitals) {
  HostUuidCache cache;
  EXPECT_EQ(cache.hostUuid(registry_), "564D0123-4567-49AB-8CDE-F0123456789A");
}

TEST_F(Identifiers, AsksForTheHostUuidOnce) {
  HostUuidCache cache;
  const auto first = cache.hostUuid(registry_);
  registry_.uuid.reset();
  EXPECT_EQ(cache.hostUuid(registry_), first);
  EXPECT_EQ(registry_.uuidReads, 1);
}

TEST_F(Identifiers, GivesThreadsThatAskFirstAtTheSameTimeTheSameHostUuid) {
  // Each read finds another UUID, so that two winners could be told apart.
  class ChangingRegistry final : public HardwareRegistry {
   public:
    [[nodiscard]] std::optional<std::string> platformSerialNumber() const override { return {}; }
    [[nodiscard]] std::optional<std::array<std::uint8_t, 16>> hostUuid(int&) const override {
      return std::array<std::uint8_t, 16>{++reads_};
    }
    [[nodiscard]] std::optional<std::vector<PrimaryInterface>> primaryInterfaces() const override {
      return {};
    }

   private:
    mutable std::atomic<std::uint8_t> reads_ = 0;
  };
  for (int round = 0; round < 200; ++round) {
    const ChangingRegistry registry;
    HostUuidCache cache;
    std::barrier start(2);
    std::optional<std::string> other;
    std::thread thread([&] {
      start.arrive_and_wait();
      other = cache.hostUuid(registry);
    });
    start.arrive_and_wait();
    const auto own = cache.hostUuid(registry);
    thread.join();
    ASSERT_TRUE(own);
    ASSERT_EQ(own, other);
    ASSERT_EQ(own, cache.hostUuid(registry));
  }
}

TEST_F(Identifiers, LogsAMissingHostUuidAndAsksAgainNextTime) {
  HostUuidCache cache;
  const auto uuid = registry_.uuid;
  registry_.uuid.reset();
  registry_.uuidError = 2;
  EXPECT_EQ(cache.hostUuid(registry_), std::nullopt);
  EXPECT_EQ(log_.messages(LogLevelDebug),
            std::vector<std::string>{"getHostUUID: unable to determine UUID for host. Error: 2"});
  registry_.uuid = uuid;
  EXPECT_EQ(cache.hostUuid(registry_), "564D0123-4567-49AB-8CDE-F0123456789A");
}

TEST_F(Identifiers, AsksTheMachineOfTheProcessForItsHostUuid) {
  EXPECT_EQ(hostUUID(workspace_), "564D0123-4567-49AB-8CDE-F0123456789A");
  EXPECT_EQ(hostUUID(workspace_), hostUUID(workspace_));
  EXPECT_EQ(fakes::processHardware().uuidReads, 1);
}

TEST_F(Identifiers, WritesThePrimaryMacAddressWithoutSeparatorsAndDumpsIt) {
  const auto [address, dump] = macAddress();
  EXPECT_EQ(address, "001b630aff07");
  EXPECT_EQ(dump, "<001b630a ff07>\n");
}

TEST_F(Identifiers, HasNoMacAddressWithoutAPrimaryInterface) {
  registry_.interfaces = std::vector<Interface>{};
  EXPECT_EQ(macAddress().first, std::nullopt);
  registry_.interfaces.reset();
  EXPECT_EQ(macAddress().first, std::nullopt);
}

TEST_F(Identifiers, WritesZerosForAControllerThatTellsNoAddress) {
  registry_.interfaces = std::vector<Interface>{{.hasController = true, .macAddress = {}}};
  const auto [address, dump] = macAddress();
  EXPECT_EQ(address, "000000000000");
  EXPECT_EQ(dump, "");
}

TEST_F(Identifiers, LetsTheControllerOfTheLastInterfaceDecide) {
  const Interface known{.hasController = true, .macAddress = Bytes{1, 2, 3, 4, 5, 6}};
  const Interface silent{.hasController = true, .macAddress = {}};
  const Interface orphan{.hasController = false, .macAddress = {}};
  registry_.interfaces = std::vector<Interface>{known, orphan};
  EXPECT_EQ(macAddress().first, std::nullopt);
  registry_.interfaces = std::vector<Interface>{orphan, known};
  EXPECT_EQ(macAddress().first, "010203040506");
  registry_.interfaces = std::vector<Interface>{known, silent};
  EXPECT_EQ(macAddress().first, "010203040506");
}

TEST_F(Identifiers, TakesSixBytesOfALongAddressAndFillsAShortOneWithZeros) {
  registry_.interfaces =
      std::vector<Interface>{{.hasController = true, .macAddress = Bytes{1, 2, 3, 4, 5, 6, 7, 8}}};
  EXPECT_EQ(macAddress().first, "010203040506");
  registry_.interfaces =
      std::vector<Interface>{{.hasController = true, .macAddress = Bytes{0xAB, 0xCD}}};
  EXPECT_EQ(macAddress().first, "abcd00000000");
}

}  // namespace
}  // namespace vornix
