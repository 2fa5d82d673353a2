#include "platform/desktop/AccessibilityStatus.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <thread>

#include "platform/linux/bus/SessionBus.h"
#include "tests/contract/support/BusService.h"
#include "tests/fakes/FakeAccessibilityStatus.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::contract {
namespace {

constexpr const char* kName = "org.a11y.Bus";
constexpr const char* kPath = "/org/a11y/bus";
constexpr const char* kInterface = "org.a11y.Status";
constexpr const char* kProperty = "ScreenReaderEnabled";

int answerTruth(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* data,
                sd_bus_error*) {
  const int truth = *static_cast<bool*>(data) ? 1 : 0;
  return sdBus().sd_bus_message_append_basic(reply, 'b', &truth);
}

int answerText(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
               sd_bus_error*) {
  return sdBus().sd_bus_message_append_basic(reply, 's', "true");
}

class FakeDesktop {
 public:
  [[nodiscard]] const AccessibilityStatus& status() const { return status_; }
  void tell(bool isEnabled) { status_.screenReader = isEnabled; }
  void fallSilent() { status_.screenReader = std::nullopt; }

 private:
  fakes::FakeAccessibilityStatus status_;
};

class RealDesktop {
 public:
  [[nodiscard]] static const AccessibilityStatus& status() { return sharedAccessibilityStatus(); }
  void tell(bool isEnabled) {
    fallSilent();
    isEnabled_ = isEnabled;
    service_ = std::make_unique<BusService>(
        BusService::Address{kName, kPath, kInterface},
        std::vector{BusService::property(kProperty, "b", answerTruth)}, &isEnabled_);
  }
  void fallSilent() { service_.reset(); }

 private:
  tests::PrivateBus bus_;
  bool isEnabled_ = false;
  std::unique_ptr<BusService> service_;
};

template <typename Desktop>
class AccessibilityStatusContract : public testing::Test {
 protected:
  std::optional<bool> ask() { return desktop_.status().isScreenReaderEnabled(); }

  Desktop desktop_;
};

using Desktops = testing::Types<FakeDesktop, RealDesktop>;
TYPED_TEST_SUITE(AccessibilityStatusContract, Desktops);

TYPED_TEST(AccessibilityStatusContract, AnswersNothingWhereNobodyTells) {
  EXPECT_EQ(this->ask(), std::nullopt);
}

TYPED_TEST(AccessibilityStatusContract, AnswersWhatTheDesktopTellsNow) {
  this->desktop_.tell(true);
  EXPECT_EQ(this->ask(), true);
  this->desktop_.tell(false);
  EXPECT_EQ(this->ask(), false);
  this->desktop_.fallSilent();
  EXPECT_EQ(this->ask(), std::nullopt);
}

TYPED_TEST(AccessibilityStatusContract, AnswersOnAnyThread) {
  this->desktop_.tell(true);
  std::optional<bool> elsewhere;
  std::thread([&] { elsewhere = this->ask(); }).join();
  EXPECT_EQ(elsewhere, true);
  EXPECT_EQ(this->ask(), true);
}

TEST(LinuxAccessibilityStatus, AnswersNothingWithoutABus) {
  tests::forgetSessionBus();
  EXPECT_EQ(sharedAccessibilityStatus().isScreenReaderEnabled(), std::nullopt);
}

TEST(LinuxAccessibilityStatus, DoesNotStartWhoeverCouldTell) {
  const tests::ScratchFolder folder;
  const tests::PrivateBus bus({{.name = kName, .command = "/bin/touch " + folder.path("started")}});
  EXPECT_EQ(sharedAccessibilityStatus().isScreenReaderEnabled(), std::nullopt);
  SessionBus other(NSRunLoop::mainRunLoop());
  EXPECT_FALSE(other.nameHasOwner(kName));
  EXPECT_NE(access(folder.path("started").c_str(), F_OK), 0);
}

TEST(LinuxAccessibilityStatus, AnswersNothingForAnAnswerOfAnotherType) {
  const tests::PrivateBus bus;
  const BusService service({kName, kPath, kInterface},
                           {BusService::property(kProperty, "s", answerText)}, nullptr);
  EXPECT_EQ(sharedAccessibilityStatus().isScreenReaderEnabled(), std::nullopt);
}

TEST(LinuxAccessibilityStatus, AnswersNothingWhereTheDesktopKnowsNoScreenReaders) {
  const tests::PrivateBus bus;
  const BusService service({kName, kPath, kInterface},
                           {BusService::property("IsEnabled", "s", answerText)}, nullptr);
  EXPECT_EQ(sharedAccessibilityStatus().isScreenReaderEnabled(), std::nullopt);
}

TEST(LinuxAccessibilityStatus, GivesUpOnADesktopThatDoesNotAnswer) {
  const tests::PrivateBus bus;
  // Nobody serves it while this thread waits.
  SessionBus mute(NSRunLoop::mainRunLoop());
  ASSERT_TRUE(mute.requestName(kName, BusNameClaim::exclusive));
  EXPECT_EQ(sharedAccessibilityStatus().isScreenReaderEnabled(), std::nullopt);
}

}  // namespace
}  // namespace vornix::contract
