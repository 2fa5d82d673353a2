#include <gmock/gmock.h>

#include "tests/unit/analytics/TrackerFixture.h"

namespace vornix {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class Tracking : public TrackerFixture {};

// The part of a hit that its sender gave.
Hit givenPart(Hit hit) {
  for (const auto* key : {"v", "tid", "an", "av", "cid", "sr", "vp", "ul"}) hit.erase(key);
  return hit;
}

TEST_F(Tracking, SendsAnEventToTheMainAndTheBackupIdentifier) {
  tracker().trackEventWithParameters({{"ec", "Totals"}, {"ea", "Notification Shown"}});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-3"));
  EXPECT_THAT(sent("t"), Each("event"));
  EXPECT_THAT(sent("ea"), Each("Notification%20Shown"));
}

TEST_F(Tracking, AddsTheNewestScreenToAnEvent) {
  tracker().setCurrentScreen("Main");
  tracker().trackEventWithParameters({});
  tracker().trackModalView("First");
  tracker().trackModalView("Second");
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("cd"), ElementsAre("Main", "Main", "First", "First", "Second", "Second",
                                      "Second", "Second"));
}

TEST_F(Tracking, KeepsTheCallersScreenEvenWithAModalScreenOpen) {
  tracker().switchToModalView("Modal");
  tracker().trackEventWithParameters({{"cd", "Mine"}});
  EXPECT_THAT(sent("cd"), Each("Mine"));
}

TEST_F(Tracking, SendsNoScreenWhereThereIsNone) {
  tracker().trackEventWithParameters({});
  EXPECT_THAT(sent("cd"), Each("-"));
}

TEST_F(Tracking, NeverAddsAScreenToATimingEvenWithAModalScreenOpen) {
  tracker().switchToModalView("Modal");
  tracker().trackTimingWithParameters({{"utc", "Scan"}, {"utt", 1200}});
  EXPECT_THAT(sent("t"), Each("timing"));
  EXPECT_THAT(sent("cd"), ElementsAre("-", "-"));
}

TEST_F(Tracking, SendsTransactionThenItemWithOneTransactionIdentifier) {
  tracker().setCurrentScreen("Shop");
  tracker().setQuillbaseSessionIdentifier("session");
  tracker().trackPurchase();
  const auto id = "VNX3" + tracker().userIdentifier();
  const Hit transaction{{"t", "transaction"}, {"ti", id}, {"tr", "39.95"}, {"cu", "USD"}};
  const Hit item{{"t", "item"},   {"ti", id},  {"in", "Vornix3"}, {"ic", "Vornix3"},
                 {"ip", "39.95"}, {"iq", "1"}, {"cu", "USD"}};
  std::vector<Hit> given;
  for (auto& hit : hits()) given.push_back(givenPart(std::move(hit)));
  EXPECT_THAT(given, ElementsAre(transaction, transaction, item, item));
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-3", "UA-1-1", "UA-1-3"));
}

TEST_F(Tracking, RemembersAndReportsAView) {
  tracker().trackView("Main");
  EXPECT_EQ(tracker().currentScreen(), "Main");
  EXPECT_EQ(givenPart(hits().front()), (Hit{{"t", "appview"}, {"cd", "Main"}}));
}

TEST_F(Tracking, ReportsAViewWithoutANameAsAnEmptyScreenAndRemembersNone) {
  tracker().trackView(std::nullopt);
  EXPECT_EQ(tracker().currentScreen(), std::nullopt);
  EXPECT_THAT(sent("cd"), ElementsAre("", ""));
}

TEST_F(Tracking, AddsNeitherUserNorScreenToAView) {
  tracker().setQuillbaseSessionIdentifier("session");
  tracker().trackView("Main");
  EXPECT_THAT(sent("uid"), Each("-"));
}

TEST_F(Tracking, ReportsAModalScreenOnceThoughItIsTrackedTwice) {
  tracker().trackModalView("Panel");
  tracker().trackModalView("Panel");
  EXPECT_THAT(tracker().modalScreens(), ElementsAre("Panel"));
  EXPECT_THAT(sent("cd"), ElementsAre("Panel", "Panel"));
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-1-3"));
}

TEST_F(Tracking, StacksModalScreensNewestFirst) {
  tracker().trackModalView("First");
  tracker().trackModalView("Second");
  EXPECT_THAT(tracker().modalScreens(), ElementsAre("Second", "First"));
  EXPECT_EQ(tracker().contentDescription(), "Second");
}

TEST_F(Tracking, ReportsAModalScreenWithoutANameButDoesNotOpenIt) {
  tracker().trackModalView(std::nullopt);
  EXPECT_THAT(tracker().modalScreens(), IsEmpty());
  EXPECT_THAT(sent("cd"), ElementsAre("", ""));
}

TEST_F(Tracking, SwitchesTheNewestModalScreenWithoutAReport) {
  tracker().switchToModalView("First");
  EXPECT_THAT(tracker().modalScreens(), ElementsAre("First"));
  tracker().setModalScreens({"Top", "Below"});
  tracker().switchToModalView("Below");
  EXPECT_THAT(tracker().modalScreens(), ElementsAre("Below", "Below"));
  tracker().switchToModalView(std::nullopt);
  EXPECT_THAT(tracker().modalScreens(), ElementsAre("Below", "Below"));
  EXPECT_THAT(urls(), IsEmpty());
}

TEST_F(Tracking, ReportsTheUnderlyingScreenWhenTheLastModalScreenCloses) {
  tracker().setCurrentScreen("Main");
  tracker().setModalScreens({"Panel"});
  tracker().stopTrackingModalView();
  EXPECT_THAT(tracker().modalScreens(), IsEmpty());
  EXPECT_EQ(tracker().currentScreen(), "Main");
  EXPECT_THAT(sent("cd"), ElementsAre("Main", "Main"));
}

TEST_F(Tracking, ReportsNothingWhenClosingAModalScreenRevealsAnother) {
  tracker().setModalScreens({"Top", "Below"});
  tracker().stopTrackingModalView();
  EXPECT_THAT(tracker().modalScreens(), ElementsAre("Below"));
  EXPECT_THAT(urls(), IsEmpty());
}

TEST_F(Tracking, IgnoresTheEndOfAModalScreenWhereNoneIsOpen) {
  tracker().setCurrentScreen("Main");
  tracker().stopTrackingModalView();
  EXPECT_THAT(tracker().modalScreens(), IsEmpty());
  EXPECT_THAT(urls(), IsEmpty());
}

TEST_F(Tracking, DuplicatesACategoryUntilToldToStop) {
  tracker().duplicateEventsForCategory("Scan", "UA-2-1");
  tracker().duplicateEventsForCategory("Scan", "UA-2-2");
  tracker().trackEventWithParameters({{"ec", "Scan"}});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-2-2", "UA-1-3"));
  tracker().stopDuplicatingEventsForCategory("Scan");
  tracker().stopDuplicatingEventsForCategory("Unknown");
  tracker().trackEventWithParameters({{"ec", "Scan"}});
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-2-2", "UA-1-3", "UA-1-1", "UA-1-3"));
}

TEST_F(Tracking, LeavesADuplicateUntouchedByANilCategoryOrIdentifier) {
  tracker().duplicateEventsForCategory("Scan", "UA-2-1");
  const auto before = tracker().additionalIdentifiers();
  tracker().duplicateEventsForCategory("Scan", std::nullopt);
  tracker().duplicateEventsForCategory(std::nullopt, "UA-2-2");
  EXPECT_EQ(tracker().additionalIdentifiers(), before);
  EXPECT_EQ(before.find("Scan")->second, "UA-2-1");
}

TEST_F(Tracking, DuplicatesViewsUntilToldToStop) {
  tracker().duplicateViewsToGAID("UA-2-1");
  tracker().trackView("Main");
  EXPECT_THAT(sent("tid"), ElementsAre("UA-1-1", "UA-2-1", "UA-1-3"));
  tracker().duplicateViewsToGAID(std::nullopt);
  EXPECT_EQ(tracker().additionalViewsIdentifier(), std::nullopt);
  tracker().duplicateViewsToGAID("UA-2-1");
  tracker().stopDuplicatingViews();
  EXPECT_EQ(tracker().additionalViewsIdentifier(), std::nullopt);
}

}  // namespace
}  // namespace vornix
