#include "platform/linux/desktop/BusUserNotificationService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/desktop/BusNames.h"
#include "tests/contract/support/NotificationDaemon.h"
#include "tests/contract/support/Reminder.h"
#include "tests/support/PrivateBus.h"

namespace vornix::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double kGenerous = 60;

const NSUserNotification kReminder = someReminder();

// An agent with the notification centre on a private bus, and somebody else on the same bus.
class BusUserNotificationServiceTest : public testing::Test {
 protected:
  BusUserNotificationServiceTest() { setenv("VORNIX_STARTED_BY_BUS", "1", 1); }
  ~BusUserNotificationServiceTest() override { unsetenv("VORNIX_STARTED_BY_BUS"); }

  // As the centre asks it; the answer's error name, empty for none, is kept.
  void activateAction(const std::string& token = "") {
    other_.callAsync(
        {.destination = kAgentBusName,
         .path = kAgentPath,
         .interface = kApplicationInterface,
         .member = "ActivateAction",
         .autoStart = false},
        [&](BusMessage& call) {
          call.writeString(kClickAction);
          call.open('a', "v");
          call.open('v', "a{sv}");
          call.writeDictionary(dictionaryWithUserNotification(kReminder));
          call.close();
          call.close();
          call.writeDictionary({{"activation-token", token}});
        },
        [this](const BusReply& reply) {
          answers_.push_back(reply.error ? reply.error->name : "");
        });
  }

  // Something happens as soon as the agent has its name.
  void whenAgentAppears(std::function<void()> action) {
    appearance_ = other_.subscribe({.member = "NameOwnerChanged", .firstArgument = kAgentBusName},
                                   [action](BusMessage& signal) {
                                     static_cast<void>(signal.readString());
                                     static_cast<void>(signal.readString());
                                     if (!signal.readString().value_or("").empty()) {
                                       action();
                                     }
                                   });
  }

  void call(const char* member, const SessionBus::Writer& write) {
    other_.callAsync({.destination = kAgentBusName,
                      .path = kAgentPath,
                      .interface = kApplicationInterface,
                      .member = member,
                      .autoStart = false},
                     write, [this](const BusReply& reply) {
                       answers_.push_back(reply.error ? reply.error->name : "");
                     });
  }

  bool runUntil(const std::function<bool()>& done) {
    return NSRunLoop::mainRunLoop()->runUntil(done, kGenerous);
  }

  tests::PrivateBus sessionBus_{{{kNotificationCenterBusName, VORNIX_NOTIFICATION_CENTER}}};
  SessionBus other_{NSRunLoop::mainRunLoop()};
  SessionBus bus_{NSRunLoop::mainRunLoop()};
  int ends_ = 0;
  std::vector<std::string> answers_;
  BusRegistration appearance_;
  BusUserNotificationService service_{bus_, NSRunLoop::mainRunLoop(), [this] { ++ends_; }};
};

TEST_F(BusUserNotificationServiceTest, DoesNotTouchTheBusInAnOrdinaryStart) {
  unsetenv("VORNIX_STARTED_BY_BUS");
  service_.setActivationHandler([](const NSUserNotification&) {});
  EXPECT_FALSE(service_.launchNotification());
  EXPECT_FALSE(bus_.isConnected());
}

TEST_F(BusUserNotificationServiceTest, HidesTheMarkOfTheStartFromItsChildren) {
  whenAgentAppears([this] { activateAction(); });
  static_cast<void>(service_.launchNotification());
  EXPECT_EQ(std::getenv("VORNIX_STARTED_BY_BUS"), nullptr);
}

TEST_F(BusUserNotificationServiceTest, TakesTheClickThatStartedItAndLetsItsNameGo) {
  whenAgentAppears([this] { activateAction("token"); });
  EXPECT_EQ(service_.launchNotification(), kReminder);
  EXPECT_EQ(bus_.takeActivationToken(), "token");
  EXPECT_FALSE(other_.nameHasOwner(kAgentBusName));
  EXPECT_EQ(other_.nameOwner(kAgentInstanceBusName), bus_.uniqueName());
  EXPECT_TRUE(runUntil([this] { return !answers_.empty(); }));
  EXPECT_THAT(answers_, ElementsAre(""));
  EXPECT_EQ(ends_, 0);
}

TEST_F(BusUserNotificationServiceTest, SendsASecondClickBackWhenItsNameIsFree) {
  std::string ownerAtAnswer = "none yet";
  whenAgentAppears([&] {
    activateAction();
    activateAction();
  });
  EXPECT_EQ(service_.launchNotification(), kReminder);
  EXPECT_TRUE(runUntil([this] { return answers_.size() == 2; }));
  EXPECT_THAT(answers_, ElementsAre("", kBusErrorNoReply));
}

TEST_F(BusUserNotificationServiceTest, StartsOrdinarilyWhenItIsOnlyActivated) {
  whenAgentAppears([this] { call("Activate", [](BusMessage& m) { m.writeDictionary({}); }); });
  EXPECT_FALSE(service_.launchNotification());
  EXPECT_TRUE(runUntil([this] { return !answers_.empty(); }));
  EXPECT_THAT(answers_, ElementsAre(""));
  EXPECT_FALSE(other_.nameHasOwner(kAgentBusName));
  EXPECT_FALSE(other_.nameHasOwner(kAgentInstanceBusName));
}

TEST_F(BusUserNotificationServiceTest, RefusesToOpenFilesAndUnknownActions) {
  whenAgentAppears([this] {
    call("Open", [](BusMessage& message) {
      message.writeStrings({"file:///a"});
      message.writeDictionary({});
    });
    call("ActivateAction", [](BusMessage& message) {
      message.writeString("something-else");
      message.open('a', "v");
      message.close();
      message.writeDictionary({});
    });
    activateAction();
  });
  EXPECT_EQ(service_.launchNotification(), kReminder);
  EXPECT_TRUE(runUntil([this] { return answers_.size() == 3; }));
  EXPECT_THAT(answers_, ElementsAre("org.freedesktop.DBus.Error.NotSupported",
                                    kBusErrorInvalidArguments, ""));
}

TEST_F(BusUserNotificationServiceTest, StartsOrdinarilyWhenNobodyAsksForAnything) {
  EXPECT_FALSE(service_.launchNotification());
  EXPECT_FALSE(other_.nameHasOwner(kAgentBusName));
}

TEST_F(BusUserNotificationServiceTest, StartsOrdinarilyWhenAnotherAgentHasTheName) {
  ASSERT_TRUE(other_.requestName(kAgentBusName, BusNameClaim::exclusive));
  EXPECT_FALSE(service_.launchNotification());
  EXPECT_TRUE(other_.nameHasOwner(kAgentBusName));
}

TEST_F(BusUserNotificationServiceTest, EndsWhenTheNextClickStartedAnotherAgent) {
  whenAgentAppears([this] { activateAction(); });
  ASSERT_TRUE(service_.launchNotification());
  ASSERT_TRUE(other_.requestName(kAgentInstanceBusName, BusNameClaim::replacing));
  EXPECT_TRUE(runUntil([this] { return ends_ > 0; }));
}

TEST_F(BusUserNotificationServiceTest, EndsWhenTheSessionEndsAfterAClickStartedIt) {
  whenAgentAppears([this] { activateAction(); });
  ASSERT_TRUE(service_.launchNotification());
  sessionBus_.stop();
  EXPECT_TRUE(runUntil([this] { return ends_ > 0; }));
}

TEST_F(BusUserNotificationServiceTest, TakesItsNameOnlyToReceiveClicks) {
  ASSERT_FALSE(service_.deliver(kReminder));
  EXPECT_FALSE(other_.nameHasOwner(kAgentBusName));
  service_.setActivationHandler([](const NSUserNotification&) {});
  ASSERT_FALSE(service_.deliver(kReminder));
  EXPECT_EQ(other_.nameOwner(kAgentBusName), bus_.uniqueName());
  service_.setActivationHandler({});
  EXPECT_FALSE(other_.nameHasOwner(kAgentBusName));
}

TEST_F(BusUserNotificationServiceTest, DeliversAlsoWhenAnotherAgentHasTheName) {
  ASSERT_TRUE(other_.requestName(kAgentBusName, BusNameClaim::exclusive));
  service_.setActivationHandler([](const NSUserNotification&) {});
  EXPECT_FALSE(service_.deliver(kReminder));
  EXPECT_THAT(service_.displayedNotifications(), SizeIs(1));
}

TEST_F(BusUserNotificationServiceTest, StartsNoCenterToAskWhatIsDisplayed) {
  EXPECT_THAT(service_.displayedNotifications(), IsEmpty());
  service_.removeAllDisplayedNotifications();
  EXPECT_FALSE(other_.nameHasOwner(kNotificationCenterBusName));
}

TEST_F(BusUserNotificationServiceTest, FindsTheNotificationsOfAnEarlierRun) {
  SessionBus earlierBus(NSRunLoop::mainRunLoop());
  BusUserNotificationService earlier(earlierBus, NSRunLoop::mainRunLoop(), [] {});
  ASSERT_FALSE(earlier.deliver(kReminder));
  EXPECT_THAT(service_.displayedNotifications(), ElementsAre(kReminder));
}

TEST_F(BusUserNotificationServiceTest, PostsWhatADesktopNeedsToShowAReminder) {
  NotificationDaemon daemon("test", {"actions", "body", "body-markup"});
  NSUserNotification marked = kReminder;
  marked.informativeText = "a < b";
  ASSERT_FALSE(service_.deliver(marked));
  ASSERT_TRUE(runUntil([&] { return !daemon.shown.empty(); }));
  const auto& shown = daemon.shown.begin()->second;
  EXPECT_EQ(shown.applicationName, "Vornix");
  EXPECT_EQ(shown.summary, "Time to clean up");
  EXPECT_EQ(shown.body, "a &lt; b");
  EXPECT_THAT(shown.actions,
              ElementsAre("default", "Launch", "launch", "Launch", "cancel", "Cancel"));
  EXPECT_EQ(shown.timeout, 0);
  EXPECT_EQ(shown.replaces, 0U);
  EXPECT_EQ(shown.hints, (Dictionary{{"urgency", 1}, {"desktop-entry", kAgentBusName}}));
}

TEST_F(BusUserNotificationServiceTest, PassesOnTheTokenOfAClickWhileItRuns) {
  NotificationDaemon daemon;
  int clicks = 0;
  service_.setActivationHandler([&](const NSUserNotification&) { ++clicks; });
  ASSERT_FALSE(service_.deliver(kReminder));
  ASSERT_TRUE(runUntil([&] { return !daemon.shown.empty(); }));
  daemon.act(daemon.shown.begin()->first, "default", "proof");
  ASSERT_TRUE(runUntil([&] { return clicks > 0 && !daemon.closed.empty(); }));
  EXPECT_EQ(bus_.takeActivationToken(), "proof");
  EXPECT_EQ(bus_.takeActivationToken(), "");
}

TEST_F(BusUserNotificationServiceTest, ShowsAReminderAgainThatTheDesktopTookForARepetition) {
  NotificationDaemon daemon;
  daemon.refusals = {"org.freedesktop.Notifications.Error.ExcessNotificationGeneration"};
  ASSERT_FALSE(service_.deliver(kReminder));
  EXPECT_TRUE(runUntil([&] { return !daemon.shown.empty(); }));
}

TEST_F(BusUserNotificationServiceTest, ShowsAReminderWhenADesktopAppears) {
  ASSERT_FALSE(service_.deliver(kReminder));
  ASSERT_THAT(service_.displayedNotifications(), SizeIs(1));
  NotificationDaemon daemon;
  EXPECT_TRUE(runUntil([&] { return !daemon.shown.empty(); }));
}

TEST_F(BusUserNotificationServiceTest, ForgetsWhatADesktopShowedThatIsGone) {
  {
    NotificationDaemon daemon;
    ASSERT_FALSE(service_.deliver(kReminder));
    ASSERT_TRUE(runUntil([&] { return !daemon.shown.empty(); }));
  }
  EXPECT_TRUE(runUntil([this] { return service_.displayedNotifications().empty(); }));
}

}  // namespace
}  // namespace vornix::contract
