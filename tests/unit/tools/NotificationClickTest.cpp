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

class NotificationClickTest : public KeeperFixture {};

TEST_F(NotificationClickTest, HandsOverClicksOnBodyAndLaunchButton) {
  server.click(show(), "default");
  server.click(show(reminder("Second")), "launch");
  ASSERT_THAT(receiver.clicks, SizeIs(2));
  EXPECT_EQ(receiver.clicks[0].notification, reminder());
  EXPECT_EQ(receiver.clicks[1].notification, reminder("Second"));
  EXPECT_THAT(keeper.displayed(), IsEmpty());
}

TEST_F(NotificationClickTest, TakesACancelledNotificationOffTheListAndTellsNobody) {
  server.click(show(), "cancel");
  EXPECT_THAT(receiver.clicks, IsEmpty());
  EXPECT_THAT(keeper.displayed(), IsEmpty());
}

TEST_F(NotificationClickTest, TakesAClosedNotificationOffTheListAndTellsNobody) {
  keeper.notificationClosed(kServer, show());
  EXPECT_THAT(receiver.clicks, IsEmpty());
  EXPECT_THAT(keeper.displayed(), IsEmpty());
}

TEST_F(NotificationClickTest, TakesARepeatedClickOnce) {
  const auto identifier = show();
  server.click(identifier, "launch");
  server.click(identifier, "launch");
  EXPECT_THAT(receiver.clicks, SizeIs(1));
}

TEST_F(NotificationClickTest, BearsARepeatedEnd) {
  const auto identifier = show();
  keeper.notificationClosed(kServer, identifier);
  keeper.notificationClosed(kServer, identifier);
  EXPECT_THAT(keeper.displayed(), IsEmpty());
}

TEST_F(NotificationClickTest, IgnoresSignalsOfAnyoneButTheServer) {
  const auto identifier = show();
  keeper.actionInvoked(":1.66", identifier, "launch");
  keeper.activationTokenArrived(":1.66", identifier, "forged");
  keeper.notificationClosed(":1.66", identifier);
  EXPECT_THAT(receiver.clicks, IsEmpty());
  EXPECT_THAT(keeper.displayed(), SizeIs(1));
  server.click(identifier, "launch");
  ASSERT_THAT(receiver.clicks, SizeIs(1));
  EXPECT_EQ(receiver.clicks[0].token, "");
}

TEST_F(NotificationClickTest, IgnoresSignalsForOtherPeoplesNotifications) {
  const auto identifier = show();
  server.click(identifier + 1, "launch");
  EXPECT_THAT(receiver.clicks, IsEmpty());
}

TEST_F(NotificationClickTest, HandsOverTheTokenThatCameForThatNotification) {
  const auto first = show();
  const auto second = show(reminder("Second"));
  keeper.activationTokenArrived(kServer, first, "first");
  keeper.activationTokenArrived(kServer, second, "second");
  server.click(first, "launch");
  ASSERT_THAT(receiver.clicks, SizeIs(1));
  EXPECT_EQ(receiver.clicks[0].token, "first");
}

TEST_F(NotificationClickTest, ClosesAClickedNotificationItself) {
  const auto identifier = show();
  server.click(identifier, "launch");
  EXPECT_THAT(server.closed, ElementsAre(Pair(kServer, identifier)));
}

TEST_F(NotificationClickTest, TakesAClickThatComesAfterTheEnd) {
  const auto identifier = show();
  keeper.notificationClosed(kServer, identifier);
  pass(1);
  server.click(identifier, "launch");
  EXPECT_THAT(receiver.clicks, SizeIs(1));
  EXPECT_THAT(server.closed, IsEmpty());
}

TEST_F(NotificationClickTest, ForgetsAnEndedNotificationAfterAWhile) {
  const auto identifier = show();
  keeper.notificationClosed(kServer, identifier);
  pass(6);
  server.click(identifier, "launch");
  EXPECT_THAT(receiver.clicks, IsEmpty());
}

TEST_F(NotificationClickTest, TriesOnceMoreWhenTheApplicationWentAwayBeforeItTookTheClick) {
  server.click(show(), "launch");
  receiver.answerNext(HandOverOutcome::noReply);
  EXPECT_THAT(receiver.clicks, SizeIs(2));
  receiver.answerNext(HandOverOutcome::noReply, "gone again");
  EXPECT_THAT(receiver.clicks, SizeIs(2));
  EXPECT_THAT(diagnostics, ElementsAre(HasSubstr("gone again")));
}

TEST_F(NotificationClickTest, DoesNotTryAgainAfterAnyOtherFailure) {
  server.click(show(), "launch");
  receiver.answerNext(HandOverOutcome::failed, "cannot be started");
  EXPECT_THAT(receiver.clicks, SizeIs(1));
  EXPECT_THAT(diagnostics, ElementsAre(HasSubstr("cannot be started")));
}

TEST_F(NotificationClickTest, StaysUntilTheApplicationHasTakenTheClick) {
  server.click(show(), "launch");
  pass(60);
  EXPECT_EQ(idleCalls, 0);
  receiver.answerNext(HandOverOutcome::handedOver);
  pass(6);
  EXPECT_EQ(idleCalls, 1);
  EXPECT_THAT(diagnostics, IsEmpty());
}

}  // namespace
}  // namespace vornix::tests
