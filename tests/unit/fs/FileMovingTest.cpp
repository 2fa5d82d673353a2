#include <cerrno>

#include "platform/base/Format.h"
#include "tests/unit/fs/FileModificationsFixture.h"

namespace vornix {
namespace {

using fakes::LoggedLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class AdvancedMove : public FileModifications {
 protected:
  bool move(std::string_view path, std::string_view toPath) {
    return advancedMoveItemAtPath(machine_.files, path, toPath, &error_);
  }
};

TEST_F(AdvancedMove, MovesNothingIntoTheFolderThatHoldsTheItem) {
  machine_.tree.addFile("/a/b/file");
  lock("/a/b/file");
  EXPECT_TRUE(move("/a/b/file", "/a/b"));
  EXPECT_TRUE(move("bare", ""));
  EXPECT_TRUE(move("", ""));
  EXPECT_TRUE(machine_.files.attributesOfItemAtPath("/a/b/file")->isImmutable);
  EXPECT_EQ(code(), 0);
  EXPECT_THAT(logger_.lines(),
              testing::Each(LoggedLine{
                  LogLevelDebug, "Make no sense to move to the same folder. Treat as success."}));
}

TEST_F(AdvancedMove, ComparesThatFolderByItsText) {
  machine_.tree.addFile("/a/b/file");
  EXPECT_FALSE(move("/a/b/file", "/a/b/"));
  EXPECT_EQ(code(), 516);
  EXPECT_TRUE(exists("/a/b/file"));
}

TEST_F(AdvancedMove, MakesTheMissingFoldersAboveTheDestination) {
  machine_.tree.addFile("/a/file");
  EXPECT_TRUE(move("/a/file", "/x/y/new"));
  EXPECT_TRUE(exists("/x/y/new"));
  EXPECT_FALSE(exists("/a/file"));
  EXPECT_EQ(code(), 0);
}

TEST_F(AdvancedMove, PutsTheItemIntoTheTrashWhereTheDestinationHasNoFolder) {
  machine_.tree.addFile("/a/one");
  machine_.tree.addFile("/a/two");
  EXPECT_TRUE(move("/a/one", ""));
  EXPECT_TRUE(move("/a/two", "bare"));
  EXPECT_FALSE(exists("/a/one"));
  EXPECT_TRUE(exists("/Trash/one"));
  EXPECT_TRUE(exists("/Trash/two"));
  EXPECT_EQ(code(), 0);
}

TEST_F(AdvancedMove, KeepsTheItemWhereThereIsNoTrash) {
  machine_.tree.addFile("/a/file");
  machine_.trash.omitFor();
  EXPECT_FALSE(move("/a/file", ""));
  EXPECT_TRUE(exists("/a/file"));
  EXPECT_EQ(code(), 512);
}

TEST_F(AdvancedMove, NeverTakesTheCurrentFolderForAnEmptySource) {
  machine_.tree.addFile("/here/file");
  machine_.tree.currentFolder = "/here";
  fakes::fileTree().currentFolder = "/here";
  EXPECT_FALSE(move("", "bare"));
  EXPECT_EQ(code(), 4);
  EXPECT_FALSE(move("", "/x/y"));
  EXPECT_EQ(code(), 4);
  EXPECT_TRUE(exists("/here/file"));
}

TEST_F(AdvancedMove, UnlocksTheItemAndTheFoldersOnBothSides) {
  machine_.tree.addFile("/from/file");
  machine_.tree.addFolder("/to");
  for (const char* path : {"/from", "/from/file", "/to"}) lock(path);
  EXPECT_TRUE(move("/from/file", "/to/file"));
  EXPECT_FALSE(machine_.files.attributesOfItemAtPath("/from")->isImmutable);
  EXPECT_FALSE(machine_.files.attributesOfItemAtPath("/to/file")->isImmutable);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(AdvancedMove, LogsWhatItCannotLookAtInOrderAndGoesOn) {
  EXPECT_FALSE(move("/a/missing", "/x/new"));
  EXPECT_THAT(logger_.messages(),
              ElementsAre(StartsWith("Failed to get attributes for /a with error: "),
                          StartsWith("Failed to get attributes for /a/missing with error: "),
                          StartsWith("Failed to get attributes for /x with error: ")));
  EXPECT_TRUE(exists("/x"));
  EXPECT_EQ(code(), 4);
}

TEST_F(AdvancedMove, ReplacesNothing) {
  machine_.tree.addFile("/a/file");
  machine_.tree.addFile("/b/file");
  EXPECT_FALSE(move("/a/file", "/b/file"));
  EXPECT_EQ(code(), 516);
  EXPECT_TRUE(exists("/a/file"));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(AdvancedMove, FailsWhereTheFolderAboveCannotBeMade) {
  machine_.tree.addFile("/a/file");
  machine_.tree.addFile("/plain");
  EXPECT_FALSE(move("/a/file", "/plain/below/new"));
  EXPECT_EQ(code(), 512);
  machine_.tree.refuseChangesIn("", EACCES);
  EXPECT_FALSE(move("/a/file", "/x/y/new"));
  EXPECT_EQ(code(), 513);
  EXPECT_TRUE(exists("/a/file"));
}

// These go through the process's own file manager.
class PreparedMove : public FileModifications {
 protected:
  PreparedMove() {
    tree_.clear();
    tree_.addFile("/a/file");
  }
  bool move(std::string_view path, std::string_view toPath, bool createDstIntermediatePath,
            bool removeDstPath) {
    return moveItemAtPath(machine_.files, path, toPath, createDstIntermediatePath, removeDstPath,
                          &error_);
  }
  [[nodiscard]] static bool isThere(std::string_view path) {
    return NSFileManager::defaultManager().attributesOfItemAtPath(path).has_value();
  }
  void expectLine(std::string_view format) {
    ASSERT_TRUE(error_.has_value());
    EXPECT_THAT(logger_.lines(),
                ElementsAre(LoggedLine{LogLevelError, text::format(format, *error_),
                                       named("moveItemAtPath:toPath:createDstIntermediatePath:"
                                             "removeDstPath:error:")}));
    logger_.capture().clear();
  }

  fakes::FakeFileTree& tree_ = fakes::fileTree();
};

TEST_F(PreparedMove, GoesThroughTheProcesssOwnFileManager) {
  machine_.tree.addFile("/b/other");
  EXPECT_TRUE(move("/a/file", "/a/new", false, false));
  EXPECT_TRUE(isThere("/a/new"));
  EXPECT_FALSE(move("/b/other", "/a/other", true, true));
  EXPECT_EQ(code(), 4);
}

TEST_F(PreparedMove, RemovesWhatStandsAtTheDestinationOnDemand) {
  tree_.addFile("/b/file");
  EXPECT_FALSE(move("/a/file", "/b/file", false, false));
  EXPECT_EQ(code(), 516);
  expectLine("Moving file: %@");
  EXPECT_TRUE(isThere("/a/file"));
  error_ = kUntouchedError;
  EXPECT_TRUE(move("/a/file", "/b/file", false, true));
  EXPECT_FALSE(isThere("/a/file"));
  EXPECT_TRUE(isThere("/b/file"));
  EXPECT_EQ(code(), 0);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PreparedMove, UnlocksNothingAtTheDestination) {
  tree_.addFile("/b/file");
  EXPECT_EQ(tree_.setImmutable("/b/file", true), 0);
  EXPECT_FALSE(move("/a/file", "/b/file", false, true));
  EXPECT_EQ(code(), 513);
  expectLine("Removing file: %@");
  EXPECT_TRUE(isThere("/a/file"));
  EXPECT_TRUE(isThere("/b/file"));
}

TEST_F(PreparedMove, DoesNotSeeADanglingLinkAtTheDestination) {
  tree_.addLink("/b/link", "missing");
  EXPECT_FALSE(move("/a/file", "/b/link", false, true));
  EXPECT_EQ(code(), 516);
  expectLine("Moving file: %@");
}

TEST_F(PreparedMove, MakesTheFoldersAboveOnDemand) {
  EXPECT_FALSE(move("/a/file", "/x/y/new", false, false));
  EXPECT_EQ(code(), 4);
  expectLine("Moving file: %@");
  error_ = kUntouchedError;
  EXPECT_TRUE(move("/a/file", "/x/y/new", true, false));
  EXPECT_TRUE(isThere("/x/y/new"));
  EXPECT_TRUE(move("/x/y/new", "/x/y/again", true, false));
  EXPECT_EQ(code(), 0);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PreparedMove, SaysWhyTheFoldersAboveCannotBeMade) {
  struct Row {
    std::string_view toPath;
    std::int64_t code;
  };
  for (const Row& row :
       {Row{"/a/file/new", 516}, Row{"/a/file/x/new", 512}, Row{"bare", 4}, Row{"", 4}}) {
    EXPECT_FALSE(move("/a/file", row.toPath, true, true)) << row.toPath;
    EXPECT_EQ(code(), row.code) << row.toPath;
    expectLine("Creating directory: %@");
  }
  EXPECT_TRUE(isThere("/a/file"));
}

}  // namespace
}  // namespace vornix
