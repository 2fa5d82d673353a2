#include "platform/desktop/UserNotificationService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/desktop/BusUserNotificationService.h"
#include "tests/contract/support/NotificationDaemon.h"
#include "tests/contract/support/Reminder.h"
#include "tests/fakes/FakeUserNotificationService.h"
#include "tests/support/PrivateBus.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double kGenerous = 60;

const NSUserNotification kReminder = someReminder();

class FakeDesktop {
 public:
  UserNotificationService& service() { return service_; }
  void waitUntilShown() {}
  void click() { service_.activate(service_.displayed.at(0)); }
  void dismiss() { service_.displayed.clear(); }
  void breakDown() { service_.failure = NSError{.localizedDescription = "broken"}; }
  bool runUntil(const std::function<bool()>& done) { return done(); }

 private:
  fakes::FakeUserNotificationService service_;
};

// The centre's own program between the service and a server of ours.
class RealDesktop {
 public:
  UserNotificationService& service() { return service_; }
  void waitUntilShown() {
    ASSERT_TRUE(runUntil([this] { return !daemon_->shown.empty(); }));
  }
  void click() {
    waitUntilShown();
    daemon_->act(daemon_->shown.rbegin()->first, "launch");
  }
  void dismiss() {
    waitUntilShown();
    daemon_->end(daemon_->shown.rbegin()->first);
  }
  void breakDown() {
    sessionBus_.stop();
    tests::forgetSessionBus();
  }
  bool runUntil(const std::function<bool()>& done) {
    return NSRunLoop::mainRunLoop()->runUntil(done, kGenerous);
  }

 private:
  tests::PrivateBus sessionBus_{
      {{"com.orvane.Vornix3.NotificationCenter", VORNIX_NOTIFICATION_CENTER}}};
  std::unique_ptr<NotificationDaemon> daemon_ = std::make_unique<NotificationDaemon>();
  SessionBus bus_{NSRunLoop::mainRunLoop()};
  BusUserNotificationService service_{bus_, NSRunLoop::mainRunLoop(), [] {}};
};

template <typename Desktop>
class UserNotificationServiceContract : public testing::Test {
 protected:
  Desktop desktop_;
  UserNotificationService& service_ = desktop_.service();
};

using Desktops = testing::Types<FakeDesktop, RealDesktop>;
TYPED_TEST_SUITE(UserNotificationServiceContract, Desktops);

TYPED_TEST(UserNotificationServiceContract, DisplaysWhatWasDelivered) {
  EXPECT_FALSE(this->service_.deliver(kReminder));
  EXPECT_THAT(this->service_.displayedNotifications(), ElementsAre(kReminder));
}

TYPED_TEST(UserNotificationServiceContract, DisplaysNothingBeforeAnythingWasDelivered) {
  EXPECT_THAT(this->service_.displayedNotifications(), IsEmpty());
}

TYPED_TEST(UserNotificationServiceContract, RemovesEverythingThatIsDisplayed) {
  ASSERT_FALSE(this->service_.deliver(kReminder));
  NSUserNotification second = kReminder;
  second.title = "Second";
  ASSERT_FALSE(this->service_.deliver(second));
  ASSERT_THAT(this->service_.displayedNotifications(), SizeIs(2));
  this->service_.removeAllDisplayedNotifications();
  EXPECT_THAT(this->service_.displayedNotifications(), IsEmpty());
}

TYPED_TEST(UserNotificationServiceContract, RemovesNothingWithoutComplaintWhenNothingIsDisplayed) {
  this->service_.removeAllDisplayedNotifications();
  EXPECT_THAT(this->service_.displayedNotifications(), IsEmpty());
}

TYPED_TEST(UserNotificationServiceContract, ReportsAClickWithTheNotificationClicked) {
  std::vector<NSUserNotification> clicked;
  this->service_.setActivationHandler(
      [&](const NSUserNotification& notification) { clicked.push_back(notification); });
  ASSERT_FALSE(this->service_.deliver(kReminder));
  this->desktop_.click();
  EXPECT_TRUE(this->desktop_.runUntil([&] { return !clicked.empty(); }));
  EXPECT_THAT(clicked, ElementsAre(kReminder));
}

TYPED_TEST(UserNotificationServiceContract, TakesADismissedNotificationOffAndReportsNoClick) {
  int clicks = 0;
  this->service_.setActivationHandler([&](const NSUserNotification&) { ++clicks; });
  ASSERT_FALSE(this->service_.deliver(kReminder));
  this->desktop_.dismiss();
  EXPECT_TRUE(
      this->desktop_.runUntil([&] { return this->service_.displayedNotifications().empty(); }));
  EXPECT_EQ(clicks, 0);
}

TYPED_TEST(UserNotificationServiceContract, SaysWhyNothingCanBeShown) {
  this->desktop_.breakDown();
  const auto error = this->service_.deliver(kReminder);
  ASSERT_TRUE(error);
  EXPECT_FALSE(error->localizedDescription.empty());
  EXPECT_THAT(this->service_.displayedNotifications(), IsEmpty());
}

TYPED_TEST(UserNotificationServiceContract, WasNotLaunchedByAClickWhenStartedOtherwise) {
  EXPECT_FALSE(this->service_.launchNotification());
}

}  // namespace
}  // namespace vornix::contract
