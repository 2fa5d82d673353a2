#include "fs/NSFileManager+FileAttributes.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/fakes/FakeFileAttributes.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using Lines = std::vector<fakes::LoggedLine>;

class FileAttributesTest : public testing::Test {
 protected:
  FileAttributesTest() {
    fakes::fileTree().addFile("/file");
    fakes::fileTree().addLink("/link", "file");
    fakes::fileTree().addLink("/link-to-nothing", "missing");
    fakes::fileAttributes().setDetails(
        "/file", {.birthTime = 11, .modificationTime = -22, .accessTime = 33});
  }

  NSFileManager& files_ = NSFileManager::defaultManager();
  fakes::ScopedSharedLogger log_;
};

TEST_F(FileAttributesTest, TellsTheTimesOfAFileAndThroughALink) {
  for (const char* path : {"/file", "/link", "/./link"}) {
    EXPECT_EQ(statCreationTimeAtPath(files_, path), 11) << path;
    EXPECT_EQ(statModificationTimeAtPath(files_, path), -22) << path;
    EXPECT_EQ(statAccessTimeAtPath(files_, path), 33) << path;
    EXPECT_EQ(lastAccessDateAtPath(files_, path), Date::fromUnixTime(33)) << path;
  }
  EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(FileAttributesTest, AnswersZeroForWhatDoesNotExistAndWithoutAPath) {
  const std::string zero("/file\0", 6);
  for (const std::optional<std::string_view>& path :
       {std::optional<std::string_view>(), std::optional<std::string_view>(""),
        std::optional<std::string_view>("/missing"), std::optional<std::string_view>("/file/x"),
        std::optional<std::string_view>("/link-to-nothing"),
        std::optional<std::string_view>(zero)}) {
    EXPECT_EQ(statCreationTimeAtPath(files_, path), 0);
    EXPECT_EQ(statModificationTimeAtPath(files_, path), 0);
    EXPECT_EQ(statAccessTimeAtPath(files_, path), 0);
    EXPECT_EQ(lastAccessDateAtPath(files_, path), Date::fromUnixTime(0));
  }
  EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(FileAttributesTest, PrefersTheIndexsDateOfLastUseToALaterAccess) {
  fakes::metadataIndex().setItem(
      "/file", Dictionary{{"kMDItemLastUsedDate", Date::fromUnixTime(20.9)},
                          {"kMDItemContentModificationDate", Date::fromUnixTime(5)}});
  EXPECT_EQ(statAccessTimeAtPath(files_, "/file"), 20);
  EXPECT_EQ(lastAccessDateAtPath(files_, "/file"), Date::fromUnixTime(20));
}

TEST_F(FileAttributesTest, TakesWhatTheIndexHoldsByItsOwnRules) {
  struct Row {
    Dictionary item;
    std::int64_t seconds;
  };
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Date modified = Date::fromUnixTime(5);
  const Row rows[] = {
      {Dictionary{{"kMDItemContentModificationDate", modified}}, 5},
      {Dictionary{{"kMDItemLastUsedDate", Date::fromUnixTime(-7.9)}}, -7},
      {Dictionary{{"kMDItemLastUsedDate", Date::fromUnixTime(0)}}, 0},
      {Dictionary{}, 33},
      {Dictionary{{"other", modified}}, 33},
      {Dictionary{{"kMDItemLastUsedDate", "yesterday"}}, 33},
      {Dictionary{{"kMDItemLastUsedDate", "yesterday"},
                  {"kMDItemContentModificationDate", modified}},
       33},
      {Dictionary{{"kMDItemLastUsedDate", Date{inf}}}, 33},
      {Dictionary{{"kMDItemLastUsedDate", Date{-inf}}}, 33},
      {Dictionary{{"kMDItemLastUsedDate", Date{nan}}}, 33},
  };
  for (const Row& row : rows) {
    fakes::metadataIndex().setItem("/file", row.item);
    EXPECT_EQ(statAccessTimeAtPath(files_, "/file"), row.seconds)
        << testing::PrintToString(&row - rows);
  }
}

TEST_F(FileAttributesTest, KnowsTheIndexedDateOfAFileThatCannotBeLookedAt) {
  fakes::metadataIndex().setItem("/missing",
                                 Dictionary{{"kMDItemLastUsedDate", Date::fromUnixTime(9)}});
  EXPECT_EQ(statAccessTimeAtPath(files_, "/missing"), 9);
}

TEST_F(FileAttributesTest, CallsAFileHiddenByItsFlagAndNeverByItsName) {
  struct Row {
    const char* path;
    std::uint32_t flags;
    bool isHidden;
  };
  for (const Row& row :
       {Row{"/plain", 0, false}, Row{"/flagged", 0x8000, true}, Row{"/.dot", 0, false},
        Row{"/.dot-flagged", 0x8002, true}, Row{"/other-flags", ~0x8000U, false}}) {
    fakes::fileTree().addFile(row.path);
    fakes::fileAttributes().setDetails(row.path, {.flags = row.flags});
    EXPECT_EQ(isFileHidden(files_, row.path), row.isHidden) << row.path;
  }
  fakes::fileTree().addLink("/.link-to-flagged", "flagged");
  EXPECT_TRUE(isFileHidden(files_, "/.link-to-flagged"));
  EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(FileAttributesTest, LogsThatAMissingFileCannotBeAskedWhetherItIsHidden) {
  for (const char* path : {"/missing", "", "/file/x", "/link-to-nothing"}) {
    log_.capture().clear();
    EXPECT_FALSE(isFileHidden(files_, path)) << path;
    const fakes::LoggedLine line{LogLevelError, "Failed to stat " + std::string(path),
                                 "-[NSFileManager(FileAttributes) isFileHidden:]"};
    EXPECT_EQ(log_.lines(), Lines{line}) << path;
  }
}

TEST_F(FileAttributesTest, LogsTheBytesOfAHostileNameAsTheyAre) {
  EXPECT_FALSE(isFileHidden(files_, "/a\n\xFF%@%s"));
  EXPECT_EQ(log_.messages(), std::vector<std::string>{"Failed to stat /a\n\xFF%@%s"});
}

}  // namespace
}  // namespace vornix
