#include "tools/notification-center/NotificationComposer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/desktop/NSUserNotification.h"

namespace vornix::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const NSUserNotification kReminder{.title = "Time & space",
                                   .informativeText = "Scan <b>now</b> & here",
                                   .hasActionButton = true,
                                   .actionButtonTitle = "Launch",
                                   .otherButtonTitle = "Cancel"};

std::vector<NotificationAction> actionsAt(const std::string& server,
                                          const NSUserNotification& notification = kReminder) {
  return composePost(dictionaryWithUserNotification(notification), {server, {}}).actions;
}

TEST(NotificationComposer, OffersBodyLaunchAndCancelWithTheirTitles) {
  EXPECT_THAT(actionsAt("gnome-shell"), ElementsAre(NotificationAction{"default", "Launch"},
                                                    NotificationAction{"launch", "Launch"},
                                                    NotificationAction{"cancel", "Cancel"}));
}

TEST(NotificationComposer, LeavesTheBodyActionOutWhereItIsDrawnAsAButton) {
  for (const char* server : {"Xfce Notify Daemon", "lxqt-notificationd"}) {
    EXPECT_THAT(actionsAt(server), ElementsAre(NotificationAction{"launch", "Launch"},
                                               NotificationAction{"cancel", "Cancel"}))
        << server;
  }
}

TEST(NotificationComposer, OffersNoButtonWithoutATitle) {
  NSUserNotification bare = kReminder;
  bare.hasActionButton = false;
  bare.otherButtonTitle.clear();
  EXPECT_THAT(actionsAt("dunst", bare), ElementsAre(NotificationAction{"default", "Launch"}));
}

TEST(NotificationComposer, EscapesMarkupForServersThatInterpretIt) {
  const auto post =
      composePost(dictionaryWithUserNotification(kReminder), {"dunst", {"body", "body-markup"}});
  EXPECT_EQ(post.body, "Scan &lt;b&gt;now&lt;/b&gt; &amp; here");
  EXPECT_EQ(post.summary, "Time & space");
}

TEST(NotificationComposer, LeavesTheTextAloneForServersThatDoNot) {
  const auto post = composePost(dictionaryWithUserNotification(kReminder), {"plain", {"body"}});
  EXPECT_EQ(post.body, "Scan <b>now</b> & here");
}

TEST(NotificationComposer, NamesTheApplicationAndItsDesktopEntry) {
  Dictionary content = dictionaryWithUserNotification(kReminder);
  EXPECT_EQ(composePost(content, {}).applicationName, "Vornix");
  EXPECT_EQ(composePost(content, {}).desktopEntry, "");
  content.set(UserNotificationKey::applicationName, "Other");
  content.set(UserNotificationKey::applicationIdentifier, "com.example.Other");
  EXPECT_EQ(composePost(content, {}).applicationName, "Other");
  EXPECT_EQ(composePost(content, {}).desktopEntry, "com.example.Other");
}

TEST(NotificationComposer, TellsClicksFromEverythingElse) {
  EXPECT_TRUE(actionIsClick("default"));
  EXPECT_TRUE(actionIsClick("launch"));
  EXPECT_FALSE(actionIsClick("cancel"));
  EXPECT_FALSE(actionIsClick(""));
  EXPECT_FALSE(actionIsClick("settings"));
}

TEST(UserNotificationDictionary, BringsANotificationBackUnchanged) {
  EXPECT_EQ(userNotificationWithDictionary(dictionaryWithUserNotification(kReminder)), kReminder);
}

TEST(UserNotificationDictionary, ReadsMissingAndMisshapenEntriesAsEmpty) {
  const auto read = userNotificationWithDictionary({{"title", "T"}, {"informative-text", 7}});
  ASSERT_TRUE(read);
  EXPECT_EQ(read->title, "T");
  EXPECT_EQ(read->informativeText, "");
  EXPECT_TRUE(read->hasActionButton);
  EXPECT_FALSE(userNotificationWithDictionary({{"title", ""}}));
}

}  // namespace
}  // namespace vornix::tests
