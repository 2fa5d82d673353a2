#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fs/NSFileManager+Additions.h"
#include "tests/fakes/FakeFileTree.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileListingTest : public testing::Test {
 protected:
  ~FileListingTest() override { fakes::fileTree().clear(); }

  // A receiver on a machine of its own.
  fakes::FakeFileMachine receiver_;
  fakes::FakeFileTree& shared_ = fakes::fileTree();
};

TEST_F(FileListingTest, AsksTheReceiverForFullPathsForPatternsAndWhetherAFolderIsEmpty) {
  receiver_.tree.addFile("/top/receiver");
  shared_.addFile("/top/shared");
  EXPECT_THAT(directoryContentsWithFullPathesAtPath(receiver_.files, "/top"),
              ElementsAre("/top/receiver"));
  const auto regex =
      NSRegularExpression::regularExpressionWithPattern("shared", NSRegularExpressionOptions::none);
  EXPECT_FALSE(fileExistsAtPath(receiver_.files, "/top", regex.get(), 9));
  shared_.addFile("/other/shared");
  EXPECT_FALSE(containsAnyFileAtPath(receiver_.files, "/other", false));
}

TEST_F(FileListingTest, AsksTheProcessesOwnManagerForLevelsContentsAndUniquePaths) {
  receiver_.tree.addFile("/top/folder/receiver");
  shared_.addFile("/top/folder/shared");
  const auto urls =
      contentsOfDirectoryAtURL(receiver_.files, NSURL::fileURLWithPath("/top", true), 1);
  ASSERT_EQ(urls.size(), 1U);
  EXPECT_EQ(urls[0].path(), "/top/folder/shared");
  EXPECT_THAT(getContentOfPath(receiver_.files, "/top", true),
              ElementsAre("folder", "folder/shared"));
  EXPECT_EQ(uniquePathForPath(receiver_.files, "/top/folder/receiver"), "/top/folder/receiver");
  EXPECT_EQ(uniquePathForPath(receiver_.files, "/top/folder/shared"), "/top/folder/shared 1");
}

TEST_F(FileListingTest, TakesWhatCannotBeReadForEmpty) {
  receiver_.tree.addFile("/top/closed/file");
  receiver_.tree.refuseReading("/top/closed", EACCES);
  shared_ = receiver_.tree;
  EXPECT_THAT(directoryContentsWithFullPathesAtPath(receiver_.files, "/top/closed"), IsEmpty());
  EXPECT_FALSE(containsAnyFileAtPath(receiver_.files, "/top/closed", false));
  EXPECT_THAT(getContentOfPath(receiver_.files, "/top", true), ElementsAre("closed"));
  EXPECT_THAT(contentsOfDirectoryAtURL(receiver_.files, NSURL::fileURLWithPath("/top", true), 1),
              IsEmpty());
}

TEST_F(FileListingTest, TellsFoldersFromFilesInTheUrlsItLists) {
  shared_.addFile("/top/folder/inner folder/x");
  shared_.addFile("/top/folder/file");
  const auto urls =
      contentsOfDirectoryAtURL(receiver_.files, NSURL::fileURLWithPath("/top", true), 1);
  ASSERT_EQ(urls.size(), 2U);
  EXPECT_EQ(urls[0].absoluteString(), "file:///top/folder/file");
  EXPECT_EQ(urls[1].absoluteString(), "file:///top/folder/inner%20folder/");
}

TEST_F(FileListingTest, ListsNothingForAUrlThatIsNoFiles) {
  shared_.addFile("/top/folder/file");
  EXPECT_THAT(contentsOfDirectoryAtURL(receiver_.files, *NSURL::URLWithString("http://top"), 1),
              IsEmpty());
}

}  // namespace
}  // namespace vornix
