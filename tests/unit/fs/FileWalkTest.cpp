#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using testing::ElementsAre;

class FileWalkTest : public testing::Test {
 protected:
  FileWalkTest() {
    for (const char* path : {"/top/a", "/top/b/inner", "/top/c"}) machine_.tree.addFile(path);
  }

  bool walk() {
    return com_orvane_FTSWalkAtPath(machine_.files, "/top", true,
                                    [this](std::string_view path, bool, bool& stop) {
                                      paths_.emplace_back(path);
                                      stop = paths_.size() == stopAfter_;
                                    });
  }

  fakes::FakeFileMachine machine_;
  fakes::ScopedSharedLogger logger_;
  std::size_t stopAfter_ = 0;
  std::vector<std::string> paths_;
};

TEST_F(FileWalkTest, AnswersNoWhereAnErrorEndsTheWalk) {
  machine_.tree.walkBreaker = "/top/b/inner";
  EXPECT_FALSE(walk());
  EXPECT_THAT(paths_, ElementsAre("/top/a", "/top/b"));
}

TEST_F(FileWalkTest, StopsWhereTheHandlerSaysSo) {
  stopAfter_ = 3;
  EXPECT_TRUE(walk());
  EXPECT_THAT(paths_, ElementsAre("/top/a", "/top/b", "/top/b/inner"));
}

TEST_F(FileWalkTest, LogsWhatClosingThrowsAndKeepsItsAnswer) {
  machine_.tree.closingFault = "disk unplugged";
  EXPECT_TRUE(walk());
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre("fts_close exception = disk unplugged"));
  machine_.tree.walkBreaker = "/top/a";
  EXPECT_FALSE(walk());
  EXPECT_EQ(logger_.lines().size(), 2U);
}

TEST_F(FileWalkTest, LogsNothingElse) {
  EXPECT_TRUE(walk());
  EXPECT_TRUE(logger_.lines().empty());
}

}  // namespace
}  // namespace vornix
