#include "platform/linux/desktop/ActivationToken.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "platform/linux/bus/SessionBus.h"
#include "platform/system/NSTask.h"

namespace vornix::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ActivationToken, StandsUnderEitherNameInTheEnvironment) {
  EXPECT_EQ(activationTokenOf({"A=1", "DESKTOP_STARTUP_ID=old", "XDG_ACTIVATION_TOKEN=new"}),
            "new");
  EXPECT_EQ(activationTokenOf({"XDG_ACTIVATION_TOKEN=", "DESKTOP_STARTUP_ID=old"}), "old");
  EXPECT_EQ(activationTokenOf({"A=1", "XDG_ACTIVATION_TOKENS=x"}), "");
}

TEST(ActivationToken, ReplacesWhateverTheEnvironmentHolds) {
  const std::vector<std::string> environment{"XDG_ACTIVATION_TOKEN=a", "B=1",
                                             "DESKTOP_STARTUP_ID=c"};
  EXPECT_THAT(environmentWithActivationToken(environment, "t"),
              ElementsAre("B=1", "XDG_ACTIVATION_TOKEN=t", "DESKTOP_STARTUP_ID=t"));
  EXPECT_THAT(environmentWithActivationToken(environment, ""), ElementsAre("B=1"));
  EXPECT_THAT(environmentWithActivationToken({}, ""), IsEmpty());
}

TEST(ActivationToken, OfAClickIsGoodForOneUse) {
  SessionBus::shared().setActivationToken("click");
  EXPECT_EQ(takeActivationTokenOfClick(), "click");
  EXPECT_EQ(takeActivationTokenOfClick(), "");
}

TEST(ActivationToken, StaysWhereItIsWhenAnotherThreadAsks) {
  SessionBus::shared().setActivationToken("click");
  std::string elsewhere = "not asked";
  std::thread([&] { elsewhere = takeActivationTokenOfClick(); }).join();
  EXPECT_EQ(elsewhere, "");
  EXPECT_EQ(takeActivationTokenOfClick(), "click");
}

int statusOf(const std::string& script) {
  const auto task = makeTask();
  EXPECT_EQ(task->launch("/bin/sh", {"-c", script}), std::nullopt);
  task->waitUntilExit();
  return task->terminationStatus().value_or(-1);
}

TEST(ActivationToken, GoesToTheFirstChildAfterTheClickAndToNoOther) {
  SessionBus::shared().setActivationToken("click");
  EXPECT_EQ(statusOf("test \"$XDG_ACTIVATION_TOKEN/$DESKTOP_STARTUP_ID/$PATH\" = "
                     "\"click/click/$PATH\" && test -n \"$PATH\""),
            0);
  EXPECT_EQ(statusOf("test \"$XDG_ACTIVATION_TOKEN\" != click"), 0);
}

}  // namespace
}  // namespace vornix::desktop
