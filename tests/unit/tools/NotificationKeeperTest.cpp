#include "tools/notification-center/NotificationKeeper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tools/KeeperFixture.h"

namespace vornix::tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

class NotificationKeeperTest : public KeeperFixture {};

TEST_F(NotificationKeeperTest, ShowsANotificationAtTheServerThatIsThere) {
  show();
  ASSERT_THAT(server.posted, SizeIs(1));
  EXPECT_EQ(server.posted[0].owner, kServer);
  EXPECT_EQ(server.posted[0].notification.summary, "Time to clean up");
  EXPECT_THAT(keeper.displayed(), ElementsAre(reminder()));
}

TEST_F(NotificationKeeperTest, RefusesADictionaryWithoutTitleAndText) {
  EXPECT_FALSE(keeper.deliver({{"has-action-button", true}}));
  EXPECT_THAT(keeper.displayed(), IsEmpty());
}

TEST_F(NotificationKeeperTest, LooksForAnOwnerFirstAndStartsNoServerWhenThereIsOne) {
  show();
  EXPECT_THAT(server.searches, ElementsAre("find"));
}

TEST_F(NotificationKeeperTest, StartsAServerWhenNobodyOwnsTheName) {
  server.startable = ":1.9";
  keeper.deliver(reminder());
  server.answerAll();
  EXPECT_THAT(server.searches, ElementsAre("find", "start"));
  ASSERT_THAT(server.posted, SizeIs(1));
  EXPECT_EQ(server.posted[0].owner, ":1.9");
}

TEST_F(NotificationKeeperTest, KeepsANotificationPendingUntilAServerAppears) {
  keeper.deliver(reminder());
  server.answerAll();
  EXPECT_THAT(server.posted, IsEmpty());
  pass(3600);
  server.changeOwner(kServer);
  server.answerAll();
  EXPECT_THAT(server.posted, SizeIs(1));
}

TEST_F(NotificationKeeperTest, CountsAPendingNotificationAsDisplayed) {
  keeper.deliver(reminder());
  server.answerAll();
  EXPECT_THAT(keeper.displayed(), SizeIs(1));
  EXPECT_FALSE(keeper.isIdle());
}

TEST_F(NotificationKeeperTest, CountsANotificationAsDisplayedBeforeTheServerHasAnswered) {
  server.owner = kServer;
  keeper.deliver(reminder());
  EXPECT_THAT(keeper.displayed(), SizeIs(1));
}

TEST_F(NotificationKeeperTest, DropsWhatAServerShowedWhenItGoes) {
  const auto identifier = show();
  server.changeOwner("");
  EXPECT_THAT(keeper.displayed(), IsEmpty());
  server.changeOwner(":1.7");
  server.answerAll();
  server.click(identifier, "launch");
  EXPECT_THAT(server.posted, SizeIs(1));
  EXPECT_THAT(receiver.clicks, IsEmpty());
}

TEST_F(NotificationKeeperTest, AsksEachNewServerWhatItCanDo) {
  show();
  show(reminder("Second"));
  EXPECT_EQ(server.descriptionsAsked, 1);
  server.changeOwner(":1.7");
  keeper.deliver(reminder("Third"));
  server.answerAll();
  EXPECT_EQ(server.descriptionsAsked, 2);
  EXPECT_EQ(server.posted.back().owner, ":1.7");
}

TEST_F(NotificationKeeperTest, ShowsPlainTextOnAServerThatDoesNotDescribeItself) {
  server.description.reset();
  show();
  EXPECT_THAT(server.posted, SizeIs(1));
}

TEST_F(NotificationKeeperTest, PostsAgainWhenTheServerGoesBeforeItAnswers) {
  server.nextResults = {{PostOutcome::serverGone, 0, ""}};
  show();
  EXPECT_THAT(keeper.displayed(), SizeIs(1));
  server.changeOwner("");
  server.changeOwner(":1.7");
  server.answerAll();
  ASSERT_THAT(server.posted, SizeIs(2));
  EXPECT_EQ(server.posted[1].owner, ":1.7");
}

TEST_F(NotificationKeeperTest, DoesNotAskADyingServerAgain) {
  server.nextResults = {{PostOutcome::serverGone, 0, ""}};
  show();
  EXPECT_THAT(server.posted, SizeIs(1));
}

TEST_F(NotificationKeeperTest, PostsToTheNextServerWhatTheFormerOneAnsweredTooLate) {
  server.owner = kServer;
  server.description = NotificationServerDescription{};
  show();
  keeper.deliver(reminder("Second"));
  server.changeOwner(":1.7");
  server.answerAll();
  ASSERT_THAT(server.posted, SizeIs(3));
  EXPECT_EQ(server.posted[1].owner, kServer);
  EXPECT_EQ(server.posted[2].owner, ":1.7");
  EXPECT_THAT(keeper.displayed(), ElementsAre(reminder("Second")));
}

TEST_F(NotificationKeeperTest, WaitsAndTriesOnceMoreWhenTheServerTakesItForARepetition) {
  server.nextResults = {{PostOutcome::repeatedTooSoon, 0, "too soon"}};
  show();
  EXPECT_THAT(server.posted, SizeIs(1));
  EXPECT_THAT(keeper.displayed(), SizeIs(1));
  pass(1.0);
  EXPECT_THAT(server.posted, SizeIs(1));
  pass(1.0);
  server.answerAll();
  EXPECT_THAT(server.posted, SizeIs(2));
  EXPECT_THAT(keeper.displayed(), SizeIs(1));
}

TEST_F(NotificationKeeperTest, GivesUpWithADiagnosticWhenTheSecondTryIsRefusedToo) {
  server.nextResults = {{PostOutcome::repeatedTooSoon, 0, "too soon"},
                        {PostOutcome::repeatedTooSoon, 0, "still too soon"}};
  show();
  pass(2);
  server.answerAll();
  EXPECT_THAT(keeper.displayed(), IsEmpty());
  EXPECT_THAT(diagnostics, ElementsAre(HasSubstr("still too soon")));
}

TEST_F(NotificationKeeperTest, DropsARefusedNotificationWithADiagnostic) {
  server.nextResults = {{PostOutcome::refused, 0, "not today"}};
  show();
  EXPECT_THAT(keeper.displayed(), IsEmpty());
  EXPECT_THAT(diagnostics, ElementsAre(HasSubstr("not today")));
}

TEST_F(NotificationKeeperTest, RemovesWhatIsShownAndWhatIsPending) {
  const auto identifier = show();
  server.changeOwner(kServer);
  keeper.removeAllDisplayed();
  EXPECT_THAT(server.closed, ElementsAre(Pair(kServer, identifier)));
  EXPECT_THAT(keeper.displayed(), IsEmpty());
  server.changeOwner("");
  keeper.deliver(reminder());
  keeper.removeAllDisplayed();
  server.answerAll();
  server.changeOwner(":1.7");
  server.answerAll();
  EXPECT_THAT(server.posted, SizeIs(1));
}

TEST_F(NotificationKeeperTest, ClosesWhatWasRemovedBeforeTheServerAnswered) {
  show();
  keeper.deliver(reminder("Second"));
  keeper.removeAllDisplayed();
  EXPECT_THAT(keeper.displayed(), IsEmpty());
  EXPECT_FALSE(keeper.isIdle());
  server.answerAll();
  EXPECT_THAT(server.closed, ElementsAre(Pair(kServer, 1), Pair(kServer, 2)));
  EXPECT_TRUE(keeper.isIdle());
}

TEST_F(NotificationKeeperTest, DoesNotRepeatWhatWasRemovedMeanwhile) {
  server.nextResults = {{PostOutcome::repeatedTooSoon, 0, ""}};
  show();
  keeper.removeAllDisplayed();
  pass(2);
  server.answerAll();
  EXPECT_THAT(server.posted, SizeIs(1));
}

TEST_F(NotificationKeeperTest, IsIdleSomeSecondsAfterItsStartWhenNothingComes) {
  pass(4.9);
  EXPECT_EQ(idleCalls, 0);
  pass(0.2);
  EXPECT_EQ(idleCalls, 1);
}

TEST_F(NotificationKeeperTest, IsNotIdleWhileANotificationIsShown) {
  show();
  pass(86400);
  EXPECT_EQ(idleCalls, 0);
}

TEST_F(NotificationKeeperTest, StartsTheIdleTimeAnewAfterEachChange) {
  pass(3);
  show();
  keeper.removeAllDisplayed();
  pass(4);
  EXPECT_EQ(idleCalls, 0);
  pass(1.5);
  EXPECT_EQ(idleCalls, 1);
}

}  // namespace
}  // namespace vornix::tests
