#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/unit/locations/VXPathsFixture.h"

namespace vornix {
namespace {

constexpr const char* kSharedLibraries = "/home/ada/Library/Preferences/com.apple.iApps.plist";
constexpr const char* kPhotosPreferences =
    "/home/ada/Library/Containers/com.apple.Photos/Data/Library/Preferences/com.apple.Photos.plist";

struct UrlRow {
  Value url;
  std::optional<std::string> folder;
};

const UrlRow kUrls[] = {
    {"file:///home/ada/Pictures/Library.aplibrary/db.xml", "/home/ada/Pictures/Library.aplibrary"},
    {"file://localhost/home/ada/My%20Photos/AlbumData.xml", "/home/ada/My Photos"},
    {"file:///a%25/%FF%0A/x", "/a%/\xFF\n"},
    {"file:///cafe%CC%81/x/", "/cafe\u0301"},
    {"file:///%ED%A0%80/x", "/\xED\xA0\x80"},
    {"file:///%D7%90%E2%80%8B/x", "/\u05d0\u200b"},
    {"file:///x", "/"},
    {"file:///", "/"},
    {"/home/ada/x", "/home/ada"},
    {"http://host/a/b", "/a"},
    {"file://", std::nullopt},
    {"mailto:ada", std::nullopt},
    {"", std::nullopt},
    {"file:///with space/x", std::nullopt},
    {"file:///broken%2/x", std::nullopt},
    {"file:///a%00b/x", std::nullopt},
    {"file:///caf\u00e9/x", std::nullopt},
    {"\xFF", std::nullopt},
    {7, std::nullopt},
    {true, std::nullopt},
    {1.5, std::nullopt},
    {Date{}, std::nullopt},
    {Data{std::byte{1}}, std::nullopt},
    {Dictionary{}, std::nullopt},
    {Null{}, std::nullopt}};

class VXPathsPhotoLibraries : public testing::Test, protected VXPathsMachine {
 protected:
  void setSharedLibraries(const Value& value) {
    resources.setPropertyList(kSharedLibraries, value);
  }
};

TEST_F(VXPathsPhotoLibraries, FindTheFolderOfTheLastApertureLibrary) {
  for (const UrlRow& row : kUrls) {
    setSharedLibraries(Dictionary{{"ApertureLastOpenedDatabase", row.url}});
    EXPECT_EQ(paths.apertureRecentLibraryPath(), row.folder) << row.url.description();
  }
  setSharedLibraries(Dictionary{{"ApertureLastOpenedDatabase", Array{"file:///a/b"}}});
  EXPECT_EQ(paths.apertureRecentLibraryPath(), std::nullopt);
}

TEST_F(VXPathsPhotoLibraries, FindTheFolderOfTheFirstOfTheRecentIPhotoLibraries) {
  for (const UrlRow& row : kUrls) {
    setSharedLibraries(Dictionary{{"iPhotoRecentDatabases", Array{row.url}}});
    EXPECT_EQ(paths.iPhotoRecentLibraryPath(), row.folder) << row.url.description();
    setSharedLibraries(Dictionary{{"iPhotoRecentDatabases", Array{row.url, "file:///z/z"}}});
    EXPECT_EQ(paths.iPhotoRecentLibraryPath(), row.folder) << row.url.description();
  }
}

TEST_F(VXPathsPhotoLibraries, FindNoIPhotoLibraryInAStringInsteadOfAnArray) {
  setSharedLibraries(Dictionary{{"iPhotoRecentDatabases", "file:///a/b"}});
  EXPECT_EQ(paths.iPhotoRecentLibraryPath(), std::nullopt);
  setSharedLibraries(Dictionary{{"iPhotoRecentDatabases", Array{}}});
  EXPECT_EQ(paths.iPhotoRecentLibraryPath(), std::nullopt);
  setSharedLibraries(Dictionary{{"iPhotoRecentDatabases", Array{Value(Array{"file:///a/b"})}}});
  EXPECT_EQ(paths.iPhotoRecentLibraryPath(), std::nullopt);
}

TEST_F(VXPathsPhotoLibraries, FindNothingWithoutAPropertyListWithKeys) {
  const auto expectNothing = [this] {
    EXPECT_EQ(paths.apertureRecentLibraryPath(), std::nullopt);
    EXPECT_EQ(paths.iPhotoRecentLibraryPath(), std::nullopt);
    EXPECT_EQ(paths.recentPhotosLibraryPath(), std::nullopt);
  };
  expectNothing();
  for (const Value& value :
       {Value(Array{"file:///a/b"}), Value("file:///a/b"), Value(Dictionary{})}) {
    setSharedLibraries(value);
    resources.setPropertyList(kPhotosPreferences, value);
    expectNothing();
  }
  resources.setFile(kSharedLibraries, "garbage");
  resources.setFile(kPhotosPreferences, "");
  expectNothing();
}

TEST_F(VXPathsPhotoLibraries, AreLookedUpWithEveryCall) {
  setSharedLibraries(Dictionary{{"ApertureLastOpenedDatabase", "file:///a/b"}});
  EXPECT_EQ(paths.apertureRecentLibraryPath(), "/a");
  setSharedLibraries(Dictionary{{"ApertureLastOpenedDatabase", "file:///c/d"}});
  EXPECT_EQ(paths.apertureRecentLibraryPath(), "/c");
}

TEST_F(VXPathsPhotoLibraries, StandInThePersonsHomeWhateverHomeWasInjected) {
  paths.setUserHomeStorage(NSURL::fileURLWithPath("/elsewhere", true));
  setSharedLibraries(Dictionary{{"ApertureLastOpenedDatabase", "file:///a/b"}});
  EXPECT_EQ(paths.apertureRecentLibraryPath(), "/a");
}

TEST_F(VXPathsPhotoLibraries, FindThePhotosLibraryItselfByItsBookmark) {
  const std::string library = "/home/ada/Pictures/P\xFF %\n.photoslibrary";
  const auto bookmark = NSURL::fileURLWithPath(library, true).bookmarkData();
  ASSERT_TRUE(bookmark.has_value());
  resources.setPropertyList(kPhotosPreferences,
                            Dictionary{{"IPXDefaultLibraryURLBookmark", *bookmark}});
  EXPECT_EQ(paths.recentPhotosLibraryPath(), std::nullopt) << "it does not exist";
  machine.tree.addFolder(library);
  EXPECT_EQ(paths.recentPhotosLibraryPath(), library);
}

TEST_F(VXPathsPhotoLibraries, FindNoPhotosLibraryByDataThatIsNoBookmark) {
  for (const Value& value :
       {Value(Data{}), Value(Data{std::byte{'b'}, std::byte{'o'}, std::byte{'o'}, std::byte{'k'}}),
        Value("/home"), Value(7), Value(Array{}), Value(Dictionary{}), Value(Null{})}) {
    machine.tree.addFolder("/home");
    resources.setPropertyList(kPhotosPreferences,
                              Dictionary{{"IPXDefaultLibraryURLBookmark", value}});
    EXPECT_EQ(paths.recentPhotosLibraryPath(), std::nullopt) << value.description();
  }
}

}  // namespace
}  // namespace vornix
