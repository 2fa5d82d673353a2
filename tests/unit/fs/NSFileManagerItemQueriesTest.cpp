#include <gtest/gtest.h>

#include <string>

#include "fs/NSFileManager+Additions.h"
#include "tests/fakes/FakeFileAttributes.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

class ItemQueries : public testing::Test {
 protected:
  ItemQueries() {
    fakes::FakeFileTree& tree = fakes::fileTree();
    tree.addFile("/folder/file");
    tree.addLink("/link-to-folder", "folder");
    tree.addLink("/link-to-file", "folder/file");
    tree.addLink("/link-to-nothing", "missing");
  }

  NSFileManager& files_ = NSFileManager::defaultManager();
};

TEST_F(ItemQueries, TellFoldersFromFilesLinksAndWhatIsMissing) {
  struct Row {
    std::string_view path;
    bool isFolder;
  };
  for (const Row& row :
       {Row{"/folder", true}, Row{"/folder/", true}, Row{"/", true}, Row{"/folder/file", false},
        Row{"/link-to-folder", false}, Row{"/link-to-folder/", true}, Row{"/link-to-file", false},
        Row{"/link-to-nothing", false}, Row{"/missing", false}, Row{"", false},
        Row{std::string_view("/folder\0", 8), false}}) {
    EXPECT_EQ(isFileDirectoryAtPath(files_, row.path), row.isFolder) << row.path;
  }
}

TEST_F(ItemQueries, CallAnItemRestrictedByItsFlagAlone) {
  struct Row {
    std::uint32_t flags;
    bool isRestricted;
  };
  for (const Row& row : {Row{0, false}, Row{0x80000, true}, Row{0xFFFFFFFF, true},
                         Row{~0x80000U, false}, Row{0x8000, false}}) {
    fakes::fileAttributes().setDetails("/folder/file", {.flags = row.flags});
    EXPECT_EQ(isFileRestricted(files_, "/folder/file"), row.isRestricted) << row.flags;
    EXPECT_EQ(isFileRestricted(files_, "/link-to-file"), row.isRestricted) << row.flags;
  }
}

TEST_F(ItemQueries, CallProtectedWhatBearsExactlyTheMark) {
  EXPECT_FALSE(isFileProtectedByRootless(files_, "/folder/file"));
  fakes::fileAttributes().addExtendedAttribute("/folder/file", "com.apple.rootless");
  EXPECT_TRUE(isFileProtectedByRootless(files_, "/folder/file"));
  EXPECT_FALSE(isFileProtectedByRootless(files_, "/link-to-file"));
  EXPECT_FALSE(isFileProtectedByRootless(files_, "/folder"));
}

TEST_F(ItemQueries, LeaveANameUnseenBehindALongerOne) {
  fakes::fileTree().addFile("/folder/another");
  fakes::fileAttributes().addExtendedAttribute("/folder/another", "com.apple.quarantine");
  fakes::fileAttributes().addExtendedAttribute("/folder/another", "com.apple.rootless");
  EXPECT_FALSE(isFileProtectedByRootless(files_, "/folder/another"));
}

TEST_F(ItemQueries, AnswerNoForWhatDoesNotExist) {
  const fakes::ScopedSharedLogger log;
  for (const std::string& path : {std::string(), std::string("/missing"),
                                  std::string("/folder/file/x"), std::string("/link-to-nothing/x"),
                                  std::string("/folder\0", 8), "/" + std::string(256, 'x')}) {
    EXPECT_FALSE(isFileDirectoryAtPath(files_, path)) << path;
    EXPECT_FALSE(isFileRestricted(files_, path)) << path;
    EXPECT_FALSE(isFileProtectedByRootless(files_, path)) << path;
  }
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace vornix
