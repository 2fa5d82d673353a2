#include <gmock/gmock.h>

#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeEventWaiter.h"
#include "tests/unit/analytics/TrackerFixture.h"

namespace vornix {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Sending : public TrackerFixture {
 protected:
  // Listens to debug notifications from now on.
  std::vector<NSNotification>& debugEvents() {
    if (!token_) {
      token_ = center_.addObserver("AnalyticsEvent", [this](const NSNotification& notification) {
        debugEvents_.push_back(notification);
      });
    }
    return debugEvents_;
  }

 private:
  std::vector<NSNotification> debugEvents_;
  NSNotificationCenter::ObserverToken token_;
};

TEST_F(Sending, QueuesNothingAndPostsNoDebugNotificationWhenDisabled) {
  store_.setValue("ShowDebugMenu", true, kOwnDomain);
  auto& events = debugEvents();
  tracker().setEnabled(false);
  tracker().sendAnalyticsWithParameters({{"t", "event"}}, false);
  tracker().sendAnalyticsWithParameters({{"t", "event"}}, true);
  EXPECT_THAT(urls(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(clientsMade_, 0);
}

TEST_F(Sending, SendsNothingForANegativeEventValue) {
  tracker().trackEventWithParameters({{"ev", -1}});
  tracker().trackEventWithParameters({{"ev", "-1"}});
  tracker().trackSynchronouslyEventWithParameters({{"ev", -7.5}});
  EXPECT_THAT(urls(), IsEmpty());
}

TEST_F(Sending, SendsAnEventWithoutAValueAndOneOfZero) {
  tracker().trackEventWithParameters({});
  EXPECT_THAT(urls(), SizeIs(2));
  tracker().trackEventWithParameters({{"ev", 0}});
  EXPECT_THAT(urls(), SizeIs(4));
  tracker().trackEventWithParameters({{"ev", Null{}}});
  EXPECT_THAT(sent("ev"), ElementsAre("-", "-", "0", "0", "-", "-"));
}

TEST_F(Sending, SendsADuplicatedCategoryToMainCategoryAndBackupInThatOrder) {
  tracker().trackEventWithParameters({{"ec", "Scheduler"}});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-4", "UA-1-3"));
}

TEST_F(Sending, SendsAViewToThreeTargetsWhereViewsAreDuplicated) {
  tracker().duplicateViewsToGAID("UA-2-1");
  tracker().trackView("Main");
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-2-1", "UA-1-3"));
}

TEST_F(Sending, SendsAnythingElseToTwoTargets) {
  tracker().duplicateViewsToGAID("UA-2-1");
  tracker().trackEventWithParameters({{"ec", "Nobody's"}});
  tracker().trackTimingWithParameters({});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-3", "UA-1-1", "UA-1-3"));
}

TEST_F(Sending, PrefersTheDuplicateOfTheCategoryToThatOfViews) {
  tracker().duplicateViewsToGAID("UA-2-1");
  tracker().sendAnalyticsWithParameters({{"t", "appview"}, {"ec", "Scheduler"}}, false);
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-4", "UA-1-3"));
}

TEST_F(Sending, TakesACategoryThatIsNoTextForOneWithoutADuplicate) {
  tracker().sendAnalyticsWithParameters({{"t", "event"}, {"ec", 7}}, false);
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-3"));
}

TEST_F(Sending, PutsASynchronousEventOnTheWireBeforeTheCallReturns) {
  tracker().trackSynchronouslyEventWithParameters({{"ec", "Scheduler"}});
  EXPECT_THAT(http_.requests(), SizeIs(3));
  EXPECT_EQ(http_.answers(), 3U);
}

TEST_F(Sending, StartsNoQueuedRequestBeforeTheOneBeforeHasCompletedOnTheMainThread) {
  const auto loop = NSRunLoop::mainRunLoop();
  fakes::waiterOf(*loop).holdTime(true);
  // Requests that had begun when each completion ran.
  std::vector<std::size_t> begun;
  services_.dispatchOnMainQueue = [&](const std::function<void()>& completion) {
    dispatchAsyncOnMainQueue([&, completion] {
      EXPECT_TRUE(isMainThread());
      begun.push_back(http_.requests().size());
      completion();
    });
  };
  tracker().trackEventWithParameters({{"ea", "first"}});
  tracker().trackEventWithParameters({{"ea", "second"}});
  ASSERT_TRUE(http_.waitForAnswers(1));
  EXPECT_TRUE(tracker().sendingLock()->boolValue());
  ASSERT_TRUE(loop->runUntil([&] { return begun.size() == 4; }, 60));
  EXPECT_THAT(begun, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(sent("ea"), ElementsAre("first", "first", "second", "second"));
}

TEST_F(Sending, NamesTheUserAgentAndGivesUpAfterAMinute) {
  installMainApplication("3.4");
  tracker().trackSynchronouslyEventWithParameters({});
  const auto request = http_.requests().front();
  EXPECT_THAT(request.headers, ElementsAre(std::pair(
                                   "User-Agent", "Vornix/3.4 (Macintosh; Intel Mac OS X 6_1_90)")));
  EXPECT_EQ(request.timeout, 60.0);
}

TEST_F(Sending, ComposesTheWholeUrlOfAHit) {
  installMainApplication("3.4");
  tracker().trackSynchronouslyEventWithParameters(
      {{"ec", "Nobody's"}, {"ea", "Notification Shown"}});
  EXPECT_EQ(http_.requests().front().url,
            "https://collect.example/collect?v=1&tid=UA-1-1&an=Vornix&av=3.4&cid=" +
                tracker().userIdentifier() +
                "&ec=Nobody's&ea=Notification%20Shown&t=event&sr=1920x1080&vp=0x0&ul=de-DE");
}

TEST_F(Sending, PostsOneDebugNotificationPerTargetOfAnEvent) {
  store_.setValue("ShowDebugMenu", true, kOwnDomain);
  auto& events = debugEvents();
  tracker().trackEventWithParameters({{"ec", "Scheduler"}});
  std::vector<std::string> gaids;
  for (const auto& event : events) {
    gaids.push_back(event.userInfo.find("gaid")->description());
    EXPECT_EQ(event.object, sharedTracker());
    EXPECT_EQ(event.userInfo,
              (Dictionary{{"ec", "Scheduler"}, {"t", "event"}, {"gaid", gaids.back()}}));
  }
  EXPECT_THAT(gaids, ElementsAre("UA-1-1", "UA-1-4", "UA-1-3"));
}

TEST_F(Sending, PostsNoDebugNotificationForAView) {
  store_.setValue("ShowDebugMenu", true, kOwnDomain);
  auto& events = debugEvents();
  tracker().trackView("Main");
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(Sending, PostsNoDebugNotificationUnlessAskedTo) {
  auto& events = debugEvents();
  tracker().trackEventWithParameters({});
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(Sending, IsSilentAboutFailuresAndGoesOn) {
  http_.answer({.error = NSError{.domain = std::string(NSURLErrorDomain), .code = -1004}});
  http_.answer({.status = 500});
  tracker().trackEventWithParameters({});
  tracker().trackEventWithParameters({});
  EXPECT_THAT(urls(), SizeIs(4));
  EXPECT_FALSE(tracker().sendingLock()->boolValue());
}

TEST_F(Sending, GoesOnAfterAUrlThatCannotBeSent) {
  installMainApplication("3.4 preview");
  tracker().trackEventWithParameters({});
  EXPECT_THAT(urls(), IsEmpty());
  tracker().setApplicationVersion("3.5");
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("av"), ElementsAre("3.5", "3.5"));
}

TEST_F(Sending, TrustsTheConfiguredCertificateAuthority) {
  configuration_.certificateAuthorityFile = "/etc/collector.pem";
  std::string trusted;
  services_.makeHttpClient = [&trusted](std::string file) -> std::unique_ptr<HttpClient> {
    trusted = std::move(file);
    return nullptr;
  };
  tracker().trackSynchronouslyEventWithParameters({});
  EXPECT_EQ(trusted, "/etc/collector.pem");
}

TEST_F(Sending, FollowsChangesThatACallerMakesToTheDuplicatesThemselves) {
  tracker().additionalIdentifiers()["Scan"] = "UA-2-7";
  tracker().trackEventWithParameters({{"ec", "Scan"}});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-2-7", "UA-1-3"));
  tracker().setAdditionalIdentifiers({});
  tracker().trackEventWithParameters({{"ec", "Scheduler"}});
  EXPECT_THAT(urls(), SizeIs(5));
}

}  // namespace
}  // namespace vornix
