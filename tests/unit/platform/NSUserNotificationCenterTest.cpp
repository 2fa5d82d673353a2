#include "platform/desktop/NSUserNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "tests/fakes/FakeUserNotificationService.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const NSUserNotification kReminder{.title = "Time to clean up",
                                   .informativeText = "Scan now",
                                   .hasActionButton = true,
                                   .actionButtonTitle = "Launch",
                                   .otherButtonTitle = "Cancel"};

class RecordingDelegate final : public NSUserNotificationCenterDelegate {
 public:
  bool userNotificationCenterShouldPresentNotification(NSUserNotificationCenter&,
                                                       const NSUserNotification&) override {
    return presents;
  }
  void userNotificationCenterDidActivateNotification(
      NSUserNotificationCenter& center, const NSUserNotification& notification) override {
    centers.push_back(&center);
    activated.push_back(notification);
  }

  bool presents = true;
  std::vector<NSUserNotificationCenter*> centers;
  std::vector<NSUserNotification> activated;
};

class NSUserNotificationCenterTest : public testing::Test {
 protected:
  NSUserNotificationCenterTest() {
    setDiagnosticReceiver([this](std::string_view line) { diagnostics_.emplace_back(line); });
  }
  ~NSUserNotificationCenterTest() override { setDiagnosticReceiver({}); }

  std::vector<std::string> diagnostics_;
  fakes::FakeUserNotificationService service_;
  RecordingDelegate delegate_;
  NSUserNotificationCenter center_{service_};
};

TEST_F(NSUserNotificationCenterTest, DeliversListsAndRemoves) {
  center_.deliverNotification(kReminder);
  EXPECT_THAT(center_.displayedNotifications(), ElementsAre(kReminder));
  center_.removeAllDisplayedNotifications();
  EXPECT_THAT(center_.displayedNotifications(), IsEmpty());
}

TEST_F(NSUserNotificationCenterTest, TellsTheDelegateOfAClick) {
  center_.setDelegate(&delegate_);
  service_.activate(kReminder);
  EXPECT_THAT(delegate_.activated, ElementsAre(kReminder));
  EXPECT_THAT(delegate_.centers, ElementsAre(&center_));
}

TEST_F(NSUserNotificationCenterTest, TellsOnlyTheLatestDelegate) {
  RecordingDelegate second;
  center_.setDelegate(&delegate_);
  center_.setDelegate(&second);
  service_.activate(kReminder);
  EXPECT_THAT(delegate_.activated, IsEmpty());
  EXPECT_THAT(second.activated, ElementsAre(kReminder));
  center_.setDelegate(nullptr);
  service_.activate(kReminder);
  EXPECT_THAT(second.activated, ElementsAre(kReminder));
}

TEST_F(NSUserNotificationCenterTest, ShowsNothingThatTheDelegateRefuses) {
  delegate_.presents = false;
  center_.setDelegate(&delegate_);
  center_.deliverNotification(kReminder);
  EXPECT_THAT(service_.delivered, IsEmpty());
}

TEST_F(NSUserNotificationCenterTest, SaysInOneLineWhyNothingCanBeShown) {
  service_.failure = NSError{.domain = "d", .code = 1, .localizedDescription = "no session"};
  center_.deliverNotification(kReminder);
  EXPECT_THAT(diagnostics_, ElementsAre(HasSubstr("no session")));
}

}  // namespace
}  // namespace vornix
