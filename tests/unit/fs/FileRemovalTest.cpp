#include <cerrno>

#include "platform/base/Format.h"
#include "tests/unit/fs/FileModificationsFixture.h"

namespace vornix {
namespace {

using fakes::LoggedLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class FileRemoval : public FileModifications {};

TEST_F(FileRemoval, CountsAMissingPathAsRemovedAndLeavesTheErrorAlone) {
  EXPECT_TRUE(removeFileAtPath(machine_.files, "/missing", &error_));
  EXPECT_TRUE(removeFileAtPath(machine_.files, "/missing/below", &error_));
  EXPECT_TRUE(removeFileAtPath(machine_.files, "", &error_));
  EXPECT_TRUE(removeFileAtPath(machine_.files, std::string_view("/\0", 2), &error_));
  EXPECT_EQ(code(), 0);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileRemoval, RemovesAFolderWithAllThatIsInIt) {
  machine_.tree.addFile("/a/b/c");
  EXPECT_TRUE(removeFileAtPath(machine_.files, "/a", &error_));
  EXPECT_FALSE(exists("/a"));
  EXPECT_EQ(code(), 0);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileRemoval, UnlocksTheFolderAroundSilentlyAndKeepsTheFirstAttemptsError) {
  machine_.tree.addFile("/folder/file");
  lock("/folder");
  EXPECT_TRUE(removeFileAtPath(machine_.files, "/folder/file", &error_));
  EXPECT_FALSE(exists("/folder/file"));
  EXPECT_FALSE(machine_.files.attributesOfItemAtPath("/folder")->isImmutable);
  EXPECT_EQ(code(), 513);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileRemoval, UnlocksTheItemItself) {
  machine_.tree.addFile("/folder/file");
  lock("/folder/file");
  EXPECT_TRUE(removeFileAtPath(machine_.files, "/folder/file"));
  EXPECT_FALSE(exists("/folder/file"));
}

TEST_F(FileRemoval, UnlocksNothingBelowTheItem) {
  machine_.tree.addFile("/folder/file");
  lock("/folder/file");
  EXPECT_FALSE(removeFileAtPath(machine_.files, "/folder", &error_));
  EXPECT_EQ(code(), 513);
  EXPECT_TRUE(machine_.files.attributesOfItemAtPath("/folder/file")->isImmutable);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileRemoval, SaysWhatElseWentWrongAndTriesOnceMore) {
  machine_.tree.addFile("/folder/file");
  machine_.tree.refuseChangesIn("/folder", EROFS);
  EXPECT_FALSE(removeFileAtPath(machine_.files, "/folder/file", &error_));
  EXPECT_EQ(code(), 642);
  EXPECT_THAT(
      logger_.lines(),
      ElementsAre(LoggedLine{LogLevelDebug,
                             text::format("An error occured while removing file at path (%@): %@",
                                          "/folder/file", *error_)}));
}

TEST_F(FileRemoval, LooksAtTheFolderAroundBeforeTheItem) {
  machine_.tree.addFile("/file");
  EXPECT_FALSE(removeFileAtPath(machine_.files, "/file/below", &error_));
  EXPECT_EQ(code(), 512);
  EXPECT_THAT(logger_.messages(LogLevelDebug),
              ElementsAre(StartsWith("An error occured while removing file at path "
                                     "(/file/below): ")));
  EXPECT_THAT(logger_.messages(LogLevelError),
              ElementsAre(StartsWith("Failed to get attributes for /file/below with error: ")));
}

TEST_F(FileRemoval, LogsTheEmptyFolderOfABareName) {
  machine_.tree.addFile("/file");
  machine_.tree.refuseChangesIn("", EACCES);
  EXPECT_FALSE(removeFileAtPath(machine_.files, "file", &error_));
  EXPECT_EQ(code(), 513);
  EXPECT_THAT(logger_.messages(), ElementsAre(StartsWith("Failed to get attributes for  with ")));
}

TEST_F(FileRemoval, HasNothingToUnlockOnAMissingPathAndLogsWhy) {
  EXPECT_TRUE(tryToUnlockFileIfNeeded(machine_.files, "/missing"));
  std::optional<NSError> why;
  EXPECT_FALSE(machine_.files.attributesOfItemAtPath("/missing", &why));
  EXPECT_THAT(logger_.lines(),
              ElementsAre(LoggedLine{
                  LogLevelError,
                  text::format("Failed to get attributes for %@ with error: %@", "/missing", *why),
                  named("tryToUnlockFileIfNeeded:")}));
}

TEST_F(FileRemoval, UnlocksOneItemOnly) {
  machine_.tree.addFile("/a/b/c");
  for (const char* path : {"/a", "/a/b", "/a/b/c"}) lock(path);
  EXPECT_TRUE(tryToUnlockFileIfNeeded(machine_.files, "/a/b"));
  EXPECT_TRUE(machine_.files.attributesOfItemAtPath("/a")->isImmutable);
  EXPECT_FALSE(machine_.files.attributesOfItemAtPath("/a/b")->isImmutable);
  EXPECT_TRUE(machine_.files.attributesOfItemAtPath("/a/b/c")->isImmutable);
  EXPECT_TRUE(tryToUnlockFileIfNeeded(machine_.files, "/a/b"));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileRemoval, SaysWhyAnItemStaysLocked) {
  machine_.tree.addFile("/file");
  lock("/file");
  machine_.tree.isRoot = false;
  EXPECT_FALSE(tryToUnlockFileIfNeeded(machine_.files, "/file"));
  std::optional<NSError> why;
  EXPECT_FALSE(machine_.files.setAttributes({{"NSFileImmutable", false}}, "/file", &why));
  EXPECT_EQ(why->code, 513);
  EXPECT_THAT(
      logger_.lines(),
      ElementsAre(LoggedLine{
          LogLevelError,
          text::format("Failed to unset immutable flag for %@ with error: %@", "/file", *why),
          named("tryToUnlockFileIfNeeded:")}));
}

TEST_F(FileRemoval, EmptiesAFolderAndLeavesIt) {
  for (const char* path : {"/folder/file", "/folder/.hidden", "/folder/below/file"})
    machine_.tree.addFile(path);
  machine_.tree.addLink("/folder/link", "/elsewhere");
  machine_.tree.addFile("/elsewhere/file");
  EXPECT_TRUE(removeContentsOfDirectoryAtPath(machine_.files, "/folder"));
  EXPECT_TRUE(exists("/folder"));
  EXPECT_TRUE(exists("/elsewhere/file"));
  EXPECT_EQ(machine_.files.contentsOfDirectoryAtPath("/folder")->size(), 0U);
  EXPECT_TRUE(removeContentsOfDirectoryAtPath(machine_.files, "/folder"));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileRemoval, RemovesTheOthersWhenOneChildCannotBeRemoved) {
  for (const char* path : {"/folder/a", "/folder/b/stays", "/folder/c", "/folder/d"})
    machine_.tree.addFile(path);
  lock("/folder/b/stays");
  EXPECT_FALSE(removeContentsOfDirectoryAtPath(machine_.files, "/folder"));
  EXPECT_THAT(*machine_.files.contentsOfDirectoryAtPath("/folder"), ElementsAre("b"));
}

TEST_F(FileRemoval, SaysWhyAFolderCannotBeEmptied) {
  machine_.tree.addFile("/file");
  for (const char* path : {"/file", "/missing", ""}) {
    logger_.capture().clear();
    EXPECT_FALSE(removeContentsOfDirectoryAtPath(machine_.files, path)) << path;
    EXPECT_THAT(
        logger_.messages(LogLevelDebug),
        ElementsAre(StartsWith("Error: failed to get contents of directory " + std::string(path) +
                               " with error Error Domain=NSCocoaErrorDomain Code=2")))
        << path;
    EXPECT_THAT(logger_.messages(LogLevelError), IsEmpty());
  }
  EXPECT_TRUE(exists("/file"));
}

TEST_F(FileRemoval, EmptiesNoFolderBelowTheRootWhenThereIsNoCurrentOne) {
  machine_.tree.addFile("/tmp/file");
  machine_.tree.currentFolder = "";
  EXPECT_FALSE(removeContentsOfDirectoryAtPath(machine_.files, "tmp"));
  EXPECT_TRUE(removeFileAtPath(machine_.files, "tmp", &error_));
  EXPECT_EQ(code(), 0);
  EXPECT_FALSE(advancedMoveItemAtPath(machine_.files, "tmp", "/elsewhere/tmp", &error_));
  EXPECT_EQ(code(), 4);
  EXPECT_TRUE(exists("/tmp/file"));
}

TEST_F(FileRemoval, KeepsNamesThatAreNoText) {
  const std::string_view names[] = {"/folder/\xFF\xFE", "/folder/a\nb", "/folder/ ",
                                    "/folder/%2e%2E", "/folder/cafe\u0301"};
  for (const std::string_view name : names) machine_.tree.addFile(std::string(name));
  machine_.tree.addFile("/folder/other");
  for (const std::string_view name : names) {
    EXPECT_TRUE(removeFileAtPath(machine_.files, name)) << name;
    EXPECT_FALSE(exists(name)) << name;
  }
  EXPECT_TRUE(exists("/folder/other"));
}

class FileTruncation : public FileModifications {
 protected:
  FileTruncation() { fakes::processFiles().addFolder("/files"); }
  // A file with ten bytes.
  std::shared_ptr<fakes::FakeFile> file(const std::string& path) {
    machine_.tree.addFile(path);
    fakes::processFiles().openForAppending(path, 0644)->writeData("0123456789");
    return fakes::processFiles().fileAtPath(path);
  }
};

TEST_F(FileTruncation, CutsAFileToNothing) {
  const auto cut = file("/files/full");
  EXPECT_TRUE(truncateFileAtPath(machine_.files, "/files/full"));
  EXPECT_EQ(cut->contents, "");
  EXPECT_TRUE(truncateFileAtPath(machine_.files, "/files/full"));
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileTruncation, RefusesFoldersAndWhatIsMissingWithoutAMessage) {
  machine_.tree.addFolder("/files/folder");
  machine_.tree.addFile("/files/unopenable");
  machine_.tree.addLink("/files/dangling", "missing");
  for (const char* path :
       {"/files/folder", "/files/missing", "/files/unopenable", "/files/dangling", ""}) {
    EXPECT_FALSE(truncateFileAtPath(machine_.files, path)) << path;
  }
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(FileTruncation, CatchesAndLogsWhatTheHandleThrows) {
  file("/files/refusing")->failing = true;
  EXPECT_FALSE(truncateFileAtPath(machine_.files, "/files/refusing"));
  EXPECT_THAT(logger_.lines(), ElementsAre(LoggedLine{LogLevelError,
                                                      "Failed to truncate file with exception: "
                                                      "the fake file refuses to be written",
                                                      named("truncateFileAtPath:")}));
}

}  // namespace
}  // namespace vornix
