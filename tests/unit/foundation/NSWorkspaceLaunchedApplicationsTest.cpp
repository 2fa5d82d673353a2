#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/NSWorkspace+LaunchedApplications.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class LaunchedApplicationsTest : public testing::Test {
 protected:
  LaunchedApplicationsTest() { applications = {}; }

  std::vector<std::int32_t> processesOf(std::string_view identifier) {
    std::vector<std::int32_t> processes;
    for (const auto& application : runningApplicationsWithBundleID(workspace, identifier))
      processes.push_back(application->processIdentifier());
    return processes;
  }

  fakes::FakeApplicationService& applications = fakes::processApplications();
  NSWorkspace& workspace = NSWorkspace::sharedWorkspace();
  fakes::ScopedSharedLogger logger;
};

TEST_F(LaunchedApplicationsTest, AnAbsentIdentifierIsNotRunningAndNobodyIsAsked) {
  applications.run("");
  EXPECT_FALSE(isApplicationRunning(workspace, std::nullopt));
  EXPECT_EQ(applications.listsAsked, 0);
}

TEST_F(LaunchedApplicationsTest, TheEmptyIdentifierNamesNoApplicationThatCannotBeNamed) {
  applications.run("");

  EXPECT_FALSE(isApplicationRunning(workspace, ""));
  EXPECT_EQ(runningApplication(workspace, ""), nullptr);
  EXPECT_THAT(processesOf(""), IsEmpty());
  EXPECT_FALSE(terminateApplicationWithBundleID(workspace, ""));
  EXPECT_THAT(applications.terminated, IsEmpty());
}

TEST_F(LaunchedApplicationsTest, FindsTheFirstRunningApplicationOfAnIdentifier) {
  applications.run("org.example.Other");
  const auto first = applications.run("org.example.App");
  applications.run("org.example.App");

  EXPECT_TRUE(isApplicationRunning(workspace, "org.example.App"));
  EXPECT_FALSE(isApplicationRunning(workspace, "org.example.Missing"));
  const auto found = runningApplication(workspace, "org.example.App");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->processIdentifier(), first.processIdentifier);
}

TEST_F(LaunchedApplicationsTest, LetterCaseMattersForOneApplicationButNotForTheList) {
  const auto upper = applications.run("org.example.App");
  applications.run("org.example.Other");
  const auto lower = applications.run("org.EXAMPLE.app");

  EXPECT_EQ(runningApplication(workspace, "ORG.example.app"), nullptr);
  EXPECT_FALSE(isApplicationRunning(workspace, "ORG.example.app"));
  EXPECT_THAT(processesOf("ORG.example.app"),
              ElementsAre(upper.processIdentifier, lower.processIdentifier));
  EXPECT_THAT(processesOf("org.example"), IsEmpty());
}

TEST_F(LaunchedApplicationsTest, OneApplicationIsLookedForInTheSharedWorkspaceWhateverTheReceiver) {
  fakes::FakeApplicationService elsewhere;
  elsewhere.run("org.example.Elsewhere");
  NSWorkspace receiver(elsewhere);
  applications.run("org.example.Here");

  EXPECT_NE(runningApplication(receiver, "org.example.Here"), nullptr);
  EXPECT_EQ(runningApplication(receiver, "org.example.Elsewhere"), nullptr);
  EXPECT_THAT(runningApplicationsWithBundleID(receiver, "org.example.Elsewhere"), SizeIs(1));
  EXPECT_THAT(runningApplicationsWithBundleID(receiver, "org.example.Here"), IsEmpty());
  EXPECT_TRUE(terminateApplicationWithBundleID(receiver, "org.example.Elsewhere"));
}

TEST_F(LaunchedApplicationsTest, LaunchesInTheForeground) {
  const auto path = applications.install("org.example.App");

  EXPECT_TRUE(launchApplicationWithBundleID(workspace, "org.example.App"));

  ASSERT_THAT(applications.launched, SizeIs(1));
  EXPECT_EQ(applications.launched[0].bundlePath, path);
  EXPECT_TRUE(applications.launched[0].activate);
  EXPECT_TRUE(isApplicationRunning(workspace, "org.example.App"));
  EXPECT_THAT(logger.messages(), IsEmpty());
}

TEST_F(LaunchedApplicationsTest, LaunchesInTheBackgroundWithoutActivation) {
  applications.install("org.example.App");

  EXPECT_TRUE(launchApplicationInBackgroundWithBundleID(workspace, "org.example.App"));

  ASSERT_THAT(applications.launched, SizeIs(1));
  EXPECT_FALSE(applications.launched[0].activate);
}

TEST_F(LaunchedApplicationsTest, TheLaunchOptionsHaveTheirPlatformValues) {
  EXPECT_EQ(VXForegroundLaunchOptions, 0x10000U);
  EXPECT_EQ(VXBackgroundLaunchOptions, 0x10200U);
  EXPECT_EQ(NSApplicationActivateIgnoringOtherApps, 2U);
}

TEST_F(LaunchedApplicationsTest, DoesNotLaunchWhatIsNotInstalled) {
  EXPECT_FALSE(launchApplicationWithBundleID(workspace, "org.example.Missing"));
  EXPECT_FALSE(launchApplicationInBackgroundWithBundleID(workspace, "org.example.Missing"));
  EXPECT_THAT(applications.launched, IsEmpty());
  EXPECT_THAT(logger.messages(), IsEmpty());
}

TEST_F(LaunchedApplicationsTest, DoesNotLaunchABundleWhosePathMakesNoUrl) {
  applications.installed.emplace_back("org.example.App", "");
  EXPECT_FALSE(launchApplicationWithBundleID(workspace, "org.example.App"));
  EXPECT_THAT(applications.launched, IsEmpty());
}

TEST_F(LaunchedApplicationsTest, LogsAFailedLaunch) {
  applications.install("org.example.App");
  applications.launchError =
      NSError{.domain = "D", .code = 7, .localizedDescription = "it is broken"};
  applications.launchFails = true;

  EXPECT_FALSE(launchApplicationWithBundleID(workspace, "org.example.App"));

  EXPECT_THAT(logger.messages(LogLevelDebug),
              ElementsAre("Failed to launch app "
                          "file:///usr/share/applications/org.example.App.desktop/ with error " +
                          applications.launchError->description()));
}

TEST_F(LaunchedApplicationsTest, AnApplicationBesideAnErrorCountsAsLaunched) {
  applications.install("org.example.App");
  applications.launchError = NSError{.domain = "D", .code = 7};

  EXPECT_TRUE(launchApplicationWithBundleID(workspace, "org.example.App"));
  EXPECT_THAT(logger.messages(LogLevelDebug), SizeIs(1));
}

TEST_F(LaunchedApplicationsTest, TerminatesTheFirstMatchAndHandsItOut) {
  const auto first = applications.run("org.example.App");
  applications.run("org.example.App");
  std::shared_ptr<NSRunningApplication> ended;

  EXPECT_TRUE(terminateApplicationWithBundleID(workspace, "org.example.App", &ended));

  EXPECT_THAT(applications.terminated, ElementsAre(first));
  ASSERT_NE(ended, nullptr);
  EXPECT_EQ(ended->processIdentifier(), first.processIdentifier);
}

TEST_F(LaunchedApplicationsTest, TerminatesNothingWhenOnlyTheCaseFits) {
  applications.run("org.example.App");
  const auto before =
      std::make_shared<NSRunningApplication>(RunningApplicationEntry{}, applications);
  auto ended = before;

  EXPECT_FALSE(terminateApplicationWithBundleID(workspace, "org.example.app", &ended));

  EXPECT_EQ(ended, before);
  EXPECT_THAT(applications.terminated, IsEmpty());
}

TEST_F(LaunchedApplicationsTest, AnswersWhatTheApplicationAnswersToTerminate) {
  const auto running = applications.run("org.example.App");
  applications.terminates = false;
  std::shared_ptr<NSRunningApplication> ended;

  EXPECT_FALSE(terminateApplicationWithBundleID(workspace, "org.example.App", &ended));

  ASSERT_NE(ended, nullptr);
  EXPECT_EQ(ended->processIdentifier(), running.processIdentifier);
}

}  // namespace
}  // namespace vornix
