#include "tools/ctl/LocationCatalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/system/NSBundle.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/FakeResourceFiles.h"

namespace vornix::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

class LocationCatalogue : public testing::Test {
 protected:
  [[nodiscard]] std::vector<std::optional<std::string>> pathsOf(std::string_view name) const {
    std::vector<std::optional<std::string>> paths;
    for (const auto& location : locationCatalogue(paths_, machine_.files)) {
      if (location.name == name) paths.push_back(location.path);
    }
    return paths;
  }
  [[nodiscard]] bool exists(std::string_view name) const {
    for (const auto& location : locationCatalogue(paths_, machine_.files)) {
      if (location.name == name) return location.exists;
    }
    ADD_FAILURE() << "no " << name;
    return false;
  }

  fakes::FakeFileMachine machine_;
  fakes::FakeResourceFiles resources_;
  NSBundle bundle_{"/bundle", {}, Dictionary{{"CFBundleIdentifier", "com.example"}}, resources_};
  VXPaths paths_{machine_.files, bundle_, resources_};
};

TEST_F(LocationCatalogue, NamesEveryAccessorOnceForEachOfItsPlaces) {
  std::set<std::string_view> names;
  std::string_view last;
  for (const auto& location : locationCatalogue(paths_, machine_.files)) {
    // Those of one name stand together.
    EXPECT_TRUE(location.name == last || names.insert(location.name).second) << location.name;
    last = location.name;
  }
  EXPECT_EQ(names.size(), 37U);
}

TEST_F(LocationCatalogue, TellsWhatTheAccessorAnswers) {
  paths_.setDownloadsURL(NSURL::fileURLWithPath("/given/downloads", true));
  paths_.setUserTempPath("/given/temporary");
  paths_.setLibraryPaths(std::vector<std::string>{"/one", "/two", "/three"});
  EXPECT_THAT(pathsOf("userHome"), ElementsAre(Optional(std::string("/home/ada"))));
  EXPECT_THAT(pathsOf("downloadsURL"), ElementsAre(Optional(std::string("/given/downloads"))));
  EXPECT_THAT(pathsOf("userTempPath"), ElementsAre(Optional(std::string("/given/temporary"))));
  EXPECT_THAT(pathsOf("libraryPaths"),
              ElementsAre(Optional(std::string("/one")), Optional(std::string("/two")),
                          Optional(std::string("/three"))));
  EXPECT_THAT(pathsOf("preferences"),
              ElementsAre(Optional(std::string("/Library/Preferences")),
                          Optional(std::string("/home/ada/Library/Preferences"))));
}

TEST_F(LocationCatalogue, HasAnEntryWithoutAPathForWhatThisMachineDoesNotHave) {
  EXPECT_THAT(pathsOf("darwinUserCaches"), ElementsAre(std::nullopt));
  EXPECT_THAT(pathsOf("recentPhotosLibraryPath"), ElementsAre(std::nullopt));
  EXPECT_FALSE(exists("darwinUserCaches"));
}

TEST_F(LocationCatalogue, HasNoEntryForAnEmptyList) {
  paths_.setLibraryPaths(std::vector<std::string>{});
  EXPECT_THAT(pathsOf("libraryPaths"), IsEmpty());
}

TEST_F(LocationCatalogue, TellsWhatExists) {
  EXPECT_FALSE(exists("systemTrash"));
  machine_.tree.addFolder("/home/ada/.Trash");
  EXPECT_TRUE(exists("systemTrash"));
}

TEST_F(LocationCatalogue, TellsTheLogFolderAlsoWhenItHasOnlyJustMadeIt) {
  machine_.tree.addFolder("/home/ada/Library/Logs");
  EXPECT_THAT(pathsOf("vnxLogFolderURL"),
              ElementsAre(Optional(std::string("/home/ada/Library/Logs/com.orvane.Vornix3"))));
  EXPECT_TRUE(exists("vnxLogFolderPath"));
}

}  // namespace
}  // namespace vornix::tools
