#include <gmock/gmock.h>

#include <barrier>
#include <thread>

#include "analytics/NSWorkspace+Analytics.h"
#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/unit/analytics/TrackerFixture.h"

namespace vornix {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Identity : public TrackerFixture {
 protected:
  void finishLaunching() {
    center_.postNotification({.name = std::string(NSApplicationDidFinishLaunchingNotification),
                              .object = tester_,
                              .userInfo = {}});
  }
};

TEST_F(Identity, SendsToTheProductionIdentifierByDefault) {
  EXPECT_EQ(tracker().analyticsGAID(), "UA-1-1");
}

TEST_F(Identity, SendsEveryHitToTheCustomIdentifierInPlaceOfTheMainOne) {
  store_.setValue("AnalyticsCustomGAID", "anything", kOwnDomain);
  store_.setValue("AnalyticsUseDebugGAID", true, kOwnDomain);
  tracker().trackEventWithParameters({});
  tracker().trackTimingWithParameters({});
  tracker().trackView("Main");
  tracker().trackPurchase();
  for (const auto* type : {"event", "timing", "appview", "transaction", "item"}) {
    std::vector<std::string> targets;
    for (const auto& hit : hits()) {
      if (hit.at("t") == type) targets.push_back(hit.at("tid"));
    }
    EXPECT_THAT(targets, ElementsAre("anything", "UA-1-3")) << type;
  }
}

TEST_F(Identity, TakesACustomIdentifierOfAnyTypeByItsText) {
  store_.setValue("AnalyticsCustomGAID", 17, kOwnDomain);
  EXPECT_EQ(tracker().analyticsGAID(), "17");
}

TEST_F(Identity, SendsToTheDebugIdentifierWhenAskedTo) {
  store_.setValue("AnalyticsUseDebugGAID", true, kOwnDomain);
  EXPECT_EQ(tracker().analyticsGAID(), "UA-1-2");
}

TEST_F(Identity, KeepsTheMainIdentifierOnceChosen) {
  EXPECT_EQ(tracker().analyticsGAID(), "UA-1-1");
  store_.setValue("AnalyticsCustomGAID", "UA-9-9", kOwnDomain);
  EXPECT_EQ(tracker().analyticsGAID(), "UA-1-1");
  tracker().setAnalyticsGAID(std::nullopt);
  EXPECT_EQ(tracker().analyticsGAID(), "UA-9-9");
}

TEST_F(Identity, ReportsAnUnknownVersionWhereTheMainApplicationIsAbsent) {
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("av"), Each(StartsWith("Unknown")));
}

TEST_F(Identity, ReportsTheVersionOfTheMainApplication) {
  installMainApplication("3.4.1");
  EXPECT_EQ(tracker().applicationVersion(), "3.4.1");
}

TEST_F(Identity, ReportsAnUnknownVersionWhereTheMainApplicationTellsNone) {
  fakes::resourceFiles().setApplicationInfo(applications_.install(std::string(kMainDomain)), {});
  EXPECT_EQ(tracker().applicationVersion(), "Unknown");
}

TEST_F(Identity, CarriesTheNewCodeOnTheNextHitAfterTheTesterChangesItsValues) {
  installMainApplication("3.4");
  tracker().trackEventWithParameters({});
  runExperiment(1, 0);
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("av"), ElementsAre("3.4", "3.4", "3.4-1A", "3.4-1A"));
}

TEST_F(Identity, KeepsTheVersionWhenAnythingElseChanges) {
  tracker().setApplicationVersion("7.0");
  tracker().observeValueForKeyPath("activeIssues", *tester_);
  tracker().observeValueForKeyPath("anything", *tester_);
  EXPECT_EQ(tracker().applicationVersion(), "7.0");
  tracker().observeValueForKeyPath("humanReadableValues", *tester_);
  EXPECT_EQ(tracker().applicationVersion(), "Unknown");
}

TEST_F(Identity, StopsListeningWhenItEnds) {
  (void)tracker();
  dropTracker();
  runExperiment(1, 0);
  finishLaunching();
}

TEST_F(Identity, AsksForTheSessionAgainAsLongAsThereIsNone) {
  EXPECT_EQ(tracker().quillbaseSessionIdentifier(), std::nullopt);
  store_.setValue("QB_SID", "first", kMainDomain);
  EXPECT_EQ(tracker().quillbaseSessionIdentifier(), "first");
  store_.setValue("QB_SID", "second", kMainDomain);
  EXPECT_EQ(tracker().quillbaseSessionIdentifier(), "first");
}

TEST_F(Identity, SendsTheSessionAsTheUserUnlessTheCallerNamesOne) {
  store_.setValue("QB_SID", "session", kMainDomain);
  tracker().trackEventWithParameters({});
  tracker().trackEventWithParameters({{"uid", "mine"}});
  tracker().trackEventWithParameters({{"uid", Null{}}});
  EXPECT_THAT(sent("uid"), ElementsAre("session", "session", "mine", "mine", "-", "-"));
}

TEST_F(Identity, NamesTheClientByTheUserIdentifierUnlessToldOtherwise) {
  EXPECT_EQ(tracker().cid(), tracker().userIdentifier());
  tracker().setCid("other");
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("cid"), Each("other"));
}

TEST_F(Identity, SendsNothingWhereTheMainApplicationsSettingsForbidIt) {
  store_.setValue("SUSendProfileInfo", false, kMainDomain);
  EXPECT_FALSE(tracker().isEnabled());
  tracker().trackEventWithParameters({});
  tracker().trackSynchronouslyEventWithParameters({});
  tracker().trackPurchase();
  EXPECT_THAT(urls(), IsEmpty());
}

TEST_F(Identity, IsEnabledByDefaultAndAsksOnlyOnce) {
  EXPECT_TRUE(tracker().isEnabled());
  store_.setValue("SUSendProfileInfo", false, kMainDomain);
  EXPECT_TRUE(tracker().isEnabled());
}

TEST_F(Identity, NotesWhenLaunchingHasFinished) {
  EXPECT_EQ(tracker().launchDate(), std::nullopt);
  finishLaunching();
  EXPECT_EQ(tracker().launchDate(), clock_.now());
}

TEST_F(Identity, DuplicatesEachConfiguredCategory) {
  configuration_.categoryIdentifiers = {{"Errors", "UA-3-1"}, {"CD", "UA-3-2"}};
  EXPECT_EQ(tracker().additionalIdentifiers(), configuration_.categoryIdentifiers);
  EXPECT_EQ(tracker().analyticsBackupIdentifier(), "UA-1-3");
}

TEST_F(Identity, KeepsWhatItIsGiven) {
  tracker().setCurrentController(tester_);
  tracker().setCurrentState(defaults_);
  EXPECT_EQ(tracker().currentController(), tester_);
  EXPECT_EQ(tracker().currentState(), defaults_);
  tracker().setLaunchDate(Date::fromUnixTime(7));
  EXPECT_EQ(tracker().launchDate(), Date::fromUnixTime(7));
}

TEST_F(Identity, SendsTheCopyOfEveryHitToTheBackupIdentifierThatItIsGiven) {
  tracker().setAnalyticsBackupIdentifier("UA-8-8");
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-8-8"));
}

TEST_F(Identity, BeginsTheUrlWithTargetApplicationVersionAndClient) {
  installMainApplication("3.4");
  EXPECT_EQ(tracker().baseURLStringForGAID("UA-7-7"),
            "https://collect.example/collect?v=1&tid=UA-7-7&an=Vornix&av=3.4&cid=" +
                tracker().userIdentifier());
}

TEST_F(Identity, ReadsNoConfigurationAndMakesNoClientBeforeTheFirstHit) {
  (void)tracker();
  EXPECT_EQ(configurationsRead_, 0);
  EXPECT_EQ(clientsMade_, 0);
  tracker().trackEventWithParameters({});
  (void)urls();
  EXPECT_EQ(configurationsRead_, 1);
  EXPECT_EQ(clientsMade_, 1);
}

TEST_F(Identity, TellsABetaByTheRunningProgramsOwnVersion) {
  bundle_ = NSBundle("", {}, Dictionary{{"CFBundleVersion", "3.0B4"}});
  EXPECT_TRUE(tracker().isBeta());
  bundle_ = NSBundle("", {}, Dictionary{{"CFBundleVersion", "3.0"}});
  EXPECT_TRUE(tracker().isBeta()) << "computed once";
  dropTracker();
  EXPECT_FALSE(tracker().isBeta());
}

TEST_F(Identity, IsNoBetaWithoutAVersion) {
  EXPECT_FALSE(tracker().isBeta());
}

TEST_F(Identity, GivesTheWorkspaceTheSameVersion) {
  installMainApplication("3.4");
  runExperiment(2, 1);
  EXPECT_EQ(applicationVersion(workspace_, *tester_), "3.4-2B");
  EXPECT_EQ(tracker().applicationVersion(), "3.4-2B");
  EXPECT_EQ(applicationName(workspace_), "Vornix");
}

TEST(TheSharedTracker, IsAnsweredForASecondCreation) {
  const auto shared = VXAnalyticsTracker::defaultTracker();
  EXPECT_EQ(VXAnalyticsTracker::create(processAnalyticsServices()), shared);
  EXPECT_EQ(VXAnalyticsTracker::defaultTracker(), shared);
}

TEST(TheSharedTracker, IsMadeOnceByThreadsThatAskFirstAtTheSameTime) {
  std::barrier start(2);
  std::shared_ptr<VXAnalyticsTracker> other;
  std::thread thread([&] {
    start.arrive_and_wait();
    other = VXAnalyticsTracker::defaultTracker();
  });
  start.arrive_and_wait();
  const auto own = VXAnalyticsTracker::defaultTracker();
  thread.join();
  EXPECT_EQ(own, other);
}

TEST(TheSharedTracker, ReadsTheConfigurationOfItsBundleAndLogsWhatIsWrongWithIt) {
  const fakes::ScopedSharedLogger log;
  fakes::resourceFiles().setPropertyList(
      NSBundle::mainBundle().bundlePath() + "/Analytics.plist",
      Dictionary{{"CollectionHost", "collect.example"},
                 {"ProductionIdentifier", "UA-1-1"},
                 {"DebugIdentifier", "UA-1-2"},
                 {"BackupIdentifier", 7},
                 {"CategoryIdentifiers", Dictionary{{"Scheduler", "UA-1-4"}}}});
  const auto configuration = processAnalyticsServices().loadConfiguration();
  EXPECT_EQ(configuration.collectionHost, "collect.example");
  EXPECT_EQ(configuration.categoryIdentifiers, (CategoryIdentifiers{{"Scheduler", "UA-1-4"}}));
  EXPECT_THAT(log.messages(LogLevelError), ElementsAre(HasSubstr("BackupIdentifier")));
}

TEST(TheSharedTracker, StandsOnTheProcesssOwnServices) {
  const auto tracker = VXAnalyticsTracker::defaultTracker();
  EXPECT_TRUE(tracker->isEnabled());
  EXPECT_EQ(tracker->systemInfo(), systemInfo(NSWorkspace::sharedWorkspace()));
  EXPECT_EQ(tracker->userAgentString(), userAgentString(NSWorkspace::sharedWorkspace()));
}

}  // namespace
}  // namespace vornix
