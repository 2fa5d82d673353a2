#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "locations/NSFileManager+AliasExt.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class AliasExt : public testing::Test {
 protected:
  AliasExt() {
    machine_.tree.addFile("/folder/file");
    machine_.tree.addFile("/folder/\xFF \n");
  }

  fakes::FakeFileMachine machine_;
  fakes::ScopedSharedLogger logger_;
};

TEST_F(AliasExt, ResolvesALinkToItsTextAndNoFurther) {
  machine_.tree.addLink("/other", "folder/file");
  for (const std::string target :
       {"/folder/file", "folder/file", "/folder//file", "/folder/../folder/file", "/folder",
        "/folder/", "/folder/.", "/", "/other", "other", "/folder/\xFF \n", "./folder/file"}) {
    machine_.tree.addLink("/link", target);
    EXPECT_EQ(resolvedOriginalPath(machine_.files, "/link"), target);
  }
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(AliasExt, SeesARelativeDestinationFromTheCurrentFolder) {
  machine_.tree.addLink("/folder/link", "file");
  EXPECT_EQ(resolvedOriginalPath(machine_.files, "/folder/link"), "/folder/link");
  machine_.tree.currentFolder = "/folder";
  EXPECT_EQ(resolvedOriginalPath(machine_.files, "/folder/link"), "file");
}

TEST_F(AliasExt, ResolvesALinkToAMissingTargetToItself) {
  for (const std::string target :
       {"missing", "/folder/missing", "/folder/file/x", "link", "\xFF"}) {
    logger_.capture().clear();
    machine_.tree.addLink("/link", target);
    EXPECT_EQ(resolvedOriginalPath(machine_.files, "/link"), "/link");
    EXPECT_THAT(logger_.messages(LogLevelDebug),
                ElementsAre("File not exists at destination " + target));
  }
}

TEST_F(AliasExt, ResolvesWhatIsNoLinkToItself) {
  machine_.tree.addLink("/link", "folder");
  for (const char* path : {"/folder/file", "/folder", "/folder/", "/", "folder/file", "//folder",
                           "/folder/../folder", "/folder/\xFF \n", "/link/", "/link/file"}) {
    EXPECT_EQ(resolvedOriginalPath(machine_.files, path), path);
  }
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(AliasExt, LogsWhyAPathCannotBeRead) {
  for (const std::string_view path :
       {"/missing"sv, ""sv, "/folder/file/x"sv, "/folder/file/"sv, "/folder/file\0"sv}) {
    logger_.capture().clear();
    EXPECT_EQ(resolvedOriginalPath(machine_.files, path), path);
    EXPECT_THAT(logger_.messages(LogLevelDebug),
                ElementsAre(StartsWith("Error resolving path (" + std::string(path) +
                                       "): Error Domain=NSCocoaErrorDomain Code=2")));
  }
}

}  // namespace
}  // namespace vornix
