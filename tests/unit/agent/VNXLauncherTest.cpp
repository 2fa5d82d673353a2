#include "agent/VNXLauncher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/FakeDistributedNotificationCenter.h"
#include "tests/fakes/FakeTask.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// The launcher on the process's own services, which are fakes here.
class VNXLauncherTest : public testing::Test {
 protected:
  VNXLauncherTest() {
    applications = {};
    center = {};
    programs = {};
  }

  fakes::FakeApplicationService& applications = fakes::processApplications();
  fakes::FakeDistributedNotificationCenter& center = fakes::processDistributedCenter();
  fakes::FakePrograms& programs = fakes::processPrograms();
  fakes::ScopedSharedLogger logger;
};

TEST_F(VNXLauncherTest, StartsTheStoppedMainApplicationWithTheRequestAsItsOnlyArgument) {
  VNXLauncher::launchVNXWithArgument("scheduledScan", std::nullopt);

  ASSERT_THAT(programs.runs, SizeIs(1));
  EXPECT_EQ(programs.runs[0].path, applications.openTool);
  EXPECT_THAT(programs.runs[0].arguments,
              ElementsAre("-b", "com.orvane.Vornix3", "-F", "--args", "-scheduledScan"));
  EXPECT_TRUE(programs.runs[0].waitedFor);
  EXPECT_THAT(center.posted, IsEmpty());
  EXPECT_THAT(applications.activated, IsEmpty());
}

TEST_F(VNXLauncherTest, StartsTheStoppedMainApplicationWithTheFilesInTheirOrder) {
  VNXLauncher::launchVNXWithArgument("scheduledScan", {{"/a", "/b"}});

  ASSERT_THAT(programs.runs, SizeIs(1));
  EXPECT_THAT(programs.runs[0].arguments, ElementsAre("-b", "com.orvane.Vornix3", "-F", "/a", "/b",
                                                      "--args", "-scheduledScan"));
}

TEST_F(VNXLauncherTest, ActivatesARunningMainApplicationAndPostsTheRequestInsteadOfStarting) {
  const auto running = applications.run("com.orvane.Vornix3");

  VNXLauncher::launchVNXWithArgument("scheduledScan", std::nullopt);

  EXPECT_THAT(applications.activated, ElementsAre(running));
  ASSERT_THAT(center.posted, SizeIs(1));
  EXPECT_EQ(center.posted[0].name, "com.orvane.vornix3.scheduledScan");
  EXPECT_EQ(center.posted[0].object, "VNXHelper");
  EXPECT_EQ(center.posted[0].userInfo, (Dictionary{{"Files", Array{}}}));
  EXPECT_TRUE(center.posted[0].deliverImmediately);
  EXPECT_THAT(programs.runs, IsEmpty());
  EXPECT_THAT(logger.messages(), IsEmpty());
}

TEST_F(VNXLauncherTest, PostsTheFilesOfARequestToARunningMainApplication) {
  applications.run("com.orvane.Vornix3");

  VNXLauncher::launchVNXWithArgument("scheduled", {{"/a", "/b"}});

  ASSERT_THAT(center.posted, SizeIs(1));
  EXPECT_EQ(center.posted[0].name, "com.orvane.vornix3.scheduled");
  EXPECT_EQ(center.posted[0].userInfo, (Dictionary{{"Files", Array{"/a", "/b"}}}));
}

TEST_F(VNXLauncherTest, TakesAnApplicationWhoseIdentifierDiffersInCaseForAnother) {
  applications.run("com.orvane.vornix3");

  VNXLauncher::launchVNXWithArgument("scheduled", std::nullopt);

  EXPECT_THAT(programs.runs, SizeIs(1));
  EXPECT_THAT(center.posted, IsEmpty());
}

TEST_F(VNXLauncherTest, LogsTheArgumentsAfterTheLaunch) {
  std::vector<std::string> messagesDuringLaunch{"not run"};
  programs.whileRunning = [&] { messagesDuringLaunch = logger.messages(); };

  VNXLauncher::launchVNXWithArgument("scheduledScan", {{"/a"}});

  EXPECT_THAT(messagesDuringLaunch, IsEmpty());
  const auto expected = text::format(
      "Will launch Vornix with arguments %@",
      Value(Array{"-b", "com.orvane.Vornix3", "-F", "/a", "--args", "-scheduledScan"}));
  EXPECT_THAT(logger.messages(LogLevelDebug), ElementsAre(expected));
}

TEST_F(VNXLauncherTest, DoesNotLookAtTheExitStatusOfTheOpenTool) {
  programs.exitStatus = 1;

  VNXLauncher::launchVNXWithArgument("scheduled", std::nullopt);

  EXPECT_THAT(logger.messages(LogLevelError), IsEmpty());
  EXPECT_THAT(logger.messages(LogLevelDebug), SizeIs(1));
}

TEST_F(VNXLauncherTest, SaysWhyTheOpenToolCannotBeRun) {
  programs.missing = {applications.openTool};

  VNXLauncher::launchVNXWithArgument("scheduled", std::nullopt);

  EXPECT_THAT(logger.messages(LogLevelError),
              ElementsAre(testing::HasSubstr("Cannot run " + applications.openTool)));
}

TEST_F(VNXLauncherTest, UsesTheServicesItWasMadeWith) {
  fakes::FakePrograms ownPrograms;
  VNXLauncher launcher({.workspace = NSWorkspace::sharedWorkspace(),
                        .distributedCenter = NSDistributedNotificationCenter::defaultCenter,
                        .makeTask = [&] { return std::make_unique<fakes::FakeTask>(ownPrograms); },
                        .openTool = "/elsewhere/open"});

  launcher.launch("scheduled", std::nullopt);

  ASSERT_THAT(ownPrograms.runs, SizeIs(1));
  EXPECT_EQ(ownPrograms.runs[0].path, "/elsewhere/open");
  EXPECT_THAT(programs.runs, IsEmpty());
}

}  // namespace
}  // namespace vornix
