#include "agent/AgentMain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/Diagnostics.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/FakeDateFormatter.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/FakeProcessLifetime.h"
#include "tests/fakes/FakeResourceFiles.h"
#include "tests/fakes/FakeSystemClock.h"
#include "tests/fakes/FakeUserNotificationService.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::string_view kOwnDomain = "com.example.program";
constexpr std::string_view kMainDomain = "com.orvane.Vornix3";
constexpr std::string_view kDateKey = "LastSchedulerNotificationDate";

// The whole agent on the process's own services, which are fakes here.
class AgentMainTest : public testing::Test {
 protected:
  AgentMainTest() { fakes::processApplications() = {}; }
  ~AgentMainTest() override { setDiagnosticReceiver({}); }

  static void setLastDate(double secondsAgo) {
    preferences().setValue(kDateKey, fakes::processClock().now().addingTimeInterval(-secondsAgo),
                           kOwnDomain);
  }
  static fakes::FakePreferencesStore& preferences() { return fakes::processPreferences(); }

  fakes::FakeUserNotificationService& notifications_ = fakes::processUserNotifications();
  fakes::ScopedSharedLogger log_;
};

TEST_F(AgentMainTest, EndsWithZeroTenSecondsAfterFindingNothingDue) {
  setLastDate(0);
  const Date start = fakes::processClock().now();
  EXPECT_EQ(runAgent(0, nullptr, processAgentServices()), 0);
  EXPECT_THAT(fakes::processLifetime().endStatuses(), ElementsAre(0));
  EXPECT_EQ(fakes::processClock().now(), start.addingTimeInterval(10));
  EXPECT_THAT(notifications_.delivered, IsEmpty());
}

TEST_F(AgentMainTest, TakesOverSharedSettingsBeforeAnythingElse) {
  setLastDate(0);
  preferences().setValue("PlaySounds", true, kOwnDomain);
  AgentServices services = processAgentServices();
  Dictionary sharedAtStart;
  services.standardUserDefaults = [&] {
    sharedAtStart = preferences().contents(kMainDomain);
    return NSUserDefaults::standardUserDefaults();
  };
  runAgent(0, nullptr, services);
  EXPECT_EQ(sharedAtStart, (Dictionary{{"PlaySounds", true}}));
}

TEST_F(AgentMainTest, RemindsInTheUsersLanguageAndRecordsTheDate) {
  fakes::resourceFiles().setFile(
      "/opt/vornix/share/program/en.lproj/Localizable.strings",
      "\"NotificationsTitle_RunSomeCleanup\" = \"Title\";\n"
      "\"NotificationDescription_RunSomeCleanup\" = \"Clean up\";\n\"Launch\" = \"Go\";");
  setLastDate(1209600);
  const Date start = fakes::processClock().now();
  AgentServices services = processAgentServices();
  std::vector<Dictionary> events;
  services.trackEvent = [&](const Dictionary& event) { events.push_back(event); };
  runAgent(0, nullptr, services);
  EXPECT_THAT(notifications_.delivered,
              ElementsAre(NSUserNotification{.title = "Title",
                                             .informativeText = "Clean up",
                                             .hasActionButton = true,
                                             .actionButtonTitle = "Go",
                                             .otherButtonTitle = "Cancel"}));
  ASSERT_THAT(events, SizeIs(1));
  EXPECT_EQ(*events[0].find("el"), Value(processAgentServices().timeOfDay(start)));
  EXPECT_EQ(preferences().copyValue(kDateKey, kOwnDomain, PreferencesUser::Current), Value(start));
}

TEST_F(AgentMainTest, LogsWhatThePlatformHasToSayAsErrors) {
  setLastDate(1209600);
  notifications_.failure = posixError(2, "the session bus");
  AgentServices services = processAgentServices();
  services.trackEvent = [](const Dictionary&) {};
  const Date start = fakes::processClock().now();
  runAgent(0, nullptr, services);
  EXPECT_THAT(log_.messages(LogLevelError), Contains("The notification cannot be shown: " +
                                                     notifications_.failure->localizedDescription));
  EXPECT_EQ(preferences().copyValue(kDateKey, kOwnDomain, PreferencesUser::Current), Value(start));
}

TEST(AgentServicesTest, TellTheTimeOfDayInHoursAndMinutes) {
  const AgentServices services = processAgentServices();
  EXPECT_EQ(services.timeOfDay(Date{0}), "00:00");
  EXPECT_EQ(services.timeOfDay(Date{9 * 3600 + 5 * 60 + 59}), "09:05");
  EXPECT_EQ(services.timeOfDay(Date{23 * 3600}), "23:00");
  fakes::dateFormattersAreMissing() = true;
  EXPECT_EQ(services.timeOfDay(Date{0}), "");
  fakes::dateFormattersAreMissing() = false;
}

TEST(AgentServicesTest, AnswerTheKeyOfATextThatIsMissing) {
  EXPECT_EQ(processAgentServices().localizedString("NotificationDescription_RunScan"),
            "NotificationDescription_RunScan");
}

TEST(AgentServicesTest, WaitTenSecondsBeforeTheEnd) {
  EXPECT_EQ(processAgentServices().terminationDelay, 10);
}

}  // namespace
}  // namespace vornix::tests
