#include "platform/files/NSPathUtilities.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/fakes/FakeFileTree.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr NSSearchPathDomainMask kBoth = NSUserDomainMask | NSLocalDomainMask;

class NSPathUtilities : public testing::Test {
 protected:
  fakes::FakeFileMachine machine_;
};

TEST_F(NSPathUtilities, ListsThePersonsFoldersFirst) {
  const auto search = [this](NSSearchPathDirectory kind, NSSearchPathDomainMask domains) {
    return NSSearchPathForDirectoriesInDomains(kind, domains, true, machine_.directories);
  };
  EXPECT_THAT(search(NSLibraryDirectory, kBoth), ElementsAre("/home/ada/Library", "/Library"));
  EXPECT_THAT(search(NSLibraryDirectory, 65535), ElementsAre("/home/ada/Library", "/Library"));
  EXPECT_THAT(search(NSLibraryDirectory, NSLocalDomainMask), ElementsAre("/Library"));
  EXPECT_THAT(search(NSDownloadsDirectory, kBoth), ElementsAre("/home/ada/Downloads"));
  EXPECT_THAT(search(NSDownloadsDirectory, NSLocalDomainMask), IsEmpty());
  EXPECT_THAT(search(NSLibraryDirectory, 0), IsEmpty());
  EXPECT_THAT(search(NSLibraryDirectory, 4 | 8), IsEmpty());
  EXPECT_THAT(search(0, kBoth), IsEmpty());
  EXPECT_THAT(search(4711, kBoth), IsEmpty());
}

TEST_F(NSPathUtilities, WritesWhatLiesInTheHomeWithATildeOnDemand) {
  const auto key = std::pair(NSCachesDirectory, NSUserDomainMask);
  machine_.directories.folders[key] = {"/home/ada/.cache", "/home/ada", "/home/adam/x", "/srv/c"};
  EXPECT_THAT(
      NSSearchPathForDirectoriesInDomains(NSCachesDirectory, kBoth, false, machine_.directories),
      ElementsAre("~/.cache", "~", "/home/adam/x", "/srv/c", "/var/cache"));
  machine_.directories.home = "/";
  EXPECT_THAT(NSSearchPathForDirectoriesInDomains(NSCachesDirectory, NSLocalDomainMask, false,
                                                  machine_.directories),
              ElementsAre("~/var/cache"));
}

TEST_F(NSPathUtilities, ExpandsATildeAtTheVeryStartOnly) {
  machine_.directories.homesOfUsers["bob"] = "/home/bob";
  struct Row {
    std::string_view path;
    std::string_view expected;
  };
  const std::string huge = "/" + std::string(1'000'000, 'x');
  const Row rows[] = {{"~", "/home/ada"},
                      {"~/", "/home/ada"},
                      {"~/a", "/home/ada/a"},
                      {"~/a/", "/home/ada/a"},
                      {"~//a", "/home/ada/a"},
                      {"~/~", "/home/ada/~"},
                      {"~bob", "/home/bob"},
                      {"~bob/a b", "/home/bob/a b"},
                      {"~carol", "~carol"},
                      {"~carol/a/", "~carol/a/"},
                      {"~ /a", "~ /a"},
                      {"a~", "a~"},
                      {" ~", " ~"},
                      {"/a/~/b/", "/a/~/b"},
                      {"/a//b", "/a//b"},
                      {"/", "/"},
                      {"", ""},
                      {"\xFF/", "\xFF"},
                      {"~/\xED\xA0\x80", "/home/ada/\xED\xA0\x80"},
                      {"~/\u05d0\u200b", "/home/ada/\u05d0\u200b"},
                      {"~\u0301", "~\u0301"},
                      {huge, huge}};
  for (const Row& row : rows)
    EXPECT_EQ(stringByExpandingTildeInPath(row.path, machine_.directories), row.expected);
}

TEST_F(NSPathUtilities, StandardizesSlashesDotsAndTheTilde) {
  machine_.tree.addFolder("/real/deep/inner");
  machine_.tree.addLink("/link", "real/deep");
  machine_.tree.addLink("/absolute", "/real/deep");
  machine_.tree.addLink("/up", "real/deep/..");
  machine_.tree.addLink("/circle", "circle");
  struct Row {
    std::string_view path;
    std::string_view expected;
  };
  constexpr Row rows[] = {{"/tmp/", "/tmp"},
                          {"/tmp//a///b/", "/tmp/a/b"},
                          {"/tmp/./a/.", "/tmp/a"},
                          {"/.", "/"},
                          {"/", "/"},
                          {"//", "/"},
                          {"/..", "/"},
                          {"/a/../b", "/b"},
                          {"/a/b/../../c", "/c"},
                          {"/link/../x", "/real/x"},
                          {"/link/inner/../x", "/link/x"},
                          {"/absolute/..", "/real"},
                          {"/up/..", "/"},
                          {"/link", "/link"},
                          {"/circle/../x", "/circle/../x"},
                          {"~/a//b", "/home/ada/a/b"},
                          {"~/..", "/home"},
                          {"a/../b", "a/../b"},
                          {"./a//b/.", "a/b"},
                          {".", "."},
                          {"", ""},
                          {"/\xFF/./\xED\xA0\x80/", "/\xFF/\xED\xA0\x80"},
                          {"/... /..a", "/... /..a"},
                          {"/cafe\u0301/\u200b", "/cafe\u0301/\u200b"}};
  for (const Row& row : rows)
    EXPECT_EQ(stringByStandardizingPath(row.path, machine_.files), row.expected) << row.path;
}

TEST_F(NSPathUtilities, StandardizesHugePathsQuickly) {
  std::string down;
  std::string up;
  for (int step = 0; step < 300'000; ++step) {
    down += "/a";
    up += "/..";
  }
  EXPECT_EQ(stringByStandardizingPath(down + "/", machine_.files), down);
  EXPECT_EQ(stringByStandardizingPath(down + up, machine_.files), "/");
}

TEST_F(NSPathUtilities, KnowsTheHomeAndTheTemporaryFolder) {
  machine_.directories.home = "/home/\xFF %";
  machine_.directories.temporary = "/var/tmp/";
  EXPECT_EQ(NSHomeDirectory(machine_.directories), "/home/\xFF %");
  EXPECT_EQ(NSTemporaryDirectory(machine_.directories), "/var/tmp/");
  fakes::standardDirectories().home = "/home/process";
  EXPECT_EQ(NSHomeDirectory(), "/home/process");
  EXPECT_EQ(NSTemporaryDirectory(), "/tmp/");
  EXPECT_EQ(stringByExpandingTildeInPath("~"), "/home/process");
}

}  // namespace
}  // namespace vornix
