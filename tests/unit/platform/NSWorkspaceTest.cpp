#include "platform/desktop/NSWorkspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/FileUrl.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/FakeFileViewer.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(FileUrl, EscapesAllButPlainLetters) {
  EXPECT_EQ(text::fileUrlWithPath("/a/b.c", false), "file:///a/b.c");
  EXPECT_EQ(text::fileUrlWithPath("/a b/%#?", true), "file:///a%20b/%25%23%3F/");
  EXPECT_EQ(text::fileUrlWithPath("/caf\xC3\xA9\xFF", false), "file:///caf%C3%A9%FF");
  EXPECT_EQ(text::fileUrlWithPath("/", true), "file:///");
}

TEST(FileUrl, NeedsAnAbsolutePath) {
  EXPECT_EQ(text::fileUrlWithPath("", true), std::nullopt);
  EXPECT_EQ(text::fileUrlWithPath("a/b", false), std::nullopt);
}

TEST(FileUrl, GivesThePathBack) {
  for (const auto* path : {"/", "/a", "/a b/%#?", "/caf\xC3\xA9\xFF"}) {
    EXPECT_EQ(text::pathOfFileUrl(*text::fileUrlWithPath(path, false)), path);
    EXPECT_EQ(text::pathOfFileUrl(*text::fileUrlWithPath(path, true)), path);
  }
  EXPECT_EQ(text::pathOfFileUrl("FILE://localhost/a"), "/a");
}

TEST(FileUrl, RefusesWhatIsNoFileOfThisMachine) {
  for (const auto* url : {"", "file:", "file://", "http://a/b", "file://host/a", "file:///a%2",
                          "file:///a%zz", "file:///a%00b", "/a"})
    EXPECT_EQ(text::pathOfFileUrl(url), std::nullopt) << url;
}

class NSWorkspaceTest : public testing::Test {
 protected:
  fakes::FakeApplicationService applications;
  fakes::FakeFileViewer viewer;
  NSWorkspace workspace{applications, viewer};
};

TEST_F(NSWorkspaceTest, AnswersASnapshotInLaunchOrder) {
  const auto first = applications.run("org.example.One");
  applications.run("org.example.Two");
  const auto snapshot = workspace.runningApplications();
  applications.running.clear();

  ASSERT_THAT(snapshot, SizeIs(2));
  EXPECT_EQ(snapshot[0]->bundleIdentifier(), "org.example.One");
  EXPECT_EQ(snapshot[0]->processIdentifier(), first.processIdentifier);
  EXPECT_EQ(snapshot[1]->bundleIdentifier(), "org.example.Two");
  EXPECT_THAT(workspace.runningApplications(), IsEmpty());
}

TEST_F(NSWorkspaceTest, TwoSnapshotsOfOneApplicationAreEqual) {
  applications.run("org.example.One");
  applications.run("org.example.One");
  const auto before = workspace.runningApplications();
  const auto after = workspace.runningApplications();

  EXPECT_TRUE(before[0]->isEqual(*after[0]));
  EXPECT_FALSE(before[0]->isEqual(*after[1]));
  EXPECT_FALSE(before[0]->isEqual(workspace));
}

TEST_F(NSWorkspaceTest, FindsABundleByItsIdentifierIgnoringCase) {
  const auto path = applications.install("org.example.App");
  EXPECT_EQ(workspace.absolutePathForAppBundleWithIdentifier("ORG.example.app"), path);
  EXPECT_EQ(workspace.absolutePathForAppBundleWithIdentifier("org.example"), std::nullopt);
}

TEST_F(NSWorkspaceTest, LaunchesTheApplicationOfAFileUrl) {
  const auto path = applications.install("org.example.App");
  std::optional<NSError> error = NSError{.domain = "left over"};

  const auto application =
      workspace.launchApplicationAtURL("file://" + path + "/", NSWorkspaceLaunchAsync, {}, &error);

  ASSERT_NE(application, nullptr);
  EXPECT_EQ(application->bundleIdentifier(), "org.example.App");
  EXPECT_EQ(error, std::nullopt);
  ASSERT_THAT(applications.launched, SizeIs(1));
  EXPECT_EQ(applications.launched[0].bundlePath, path);
}

TEST_F(NSWorkspaceTest, AnswersAnErrorForAUrlThatIsNoFile) {
  std::optional<NSError> error;
  EXPECT_EQ(workspace.launchApplicationAtURL("http://a/", 0, {}, &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain, NSCocoaErrorDomain);
  EXPECT_THAT(applications.launched, IsEmpty());
  EXPECT_EQ(workspace.launchApplicationAtURL("", 0, {}, nullptr), nullptr);
}

TEST_F(NSWorkspaceTest, HasTheFileViewerSelectTheFile) {
  EXPECT_TRUE(workspace.selectFileInFileViewerRootedAtPath("/home/ada", ""));
  EXPECT_TRUE(workspace.selectFileInFileViewerRootedAtPath("/home", "/"));
  viewer.canSelect = viewer.canOpen = false;
  EXPECT_FALSE(workspace.selectFileInFileViewerRootedAtPath("/home", ""));
  EXPECT_THAT(viewer.selected, ElementsAre("/home/ada", "/home"));
}

}  // namespace
}  // namespace vornix
