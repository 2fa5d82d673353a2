#include "platform/linux/files/LinuxStandardDirectories.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/linux/files/UserDirectories.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/support/ScopedDiagnostics.h"
#include "tests/support/ScratchFolder.h"

namespace vornix {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class LinuxStandardDirectoriesTest : public testing::Test {
 protected:
  LinuxStandardDirectoriesTest() { process_.home = scratch_.path(); }

  [[nodiscard]] std::string only(NSSearchPathDirectory kind) const {
    const auto paths = directories_.directories(kind, NSUserDomainMask);
    return paths.size() == 1 ? paths.front() : "not one";
  }

  tests::ScratchFolder scratch_;
  fakes::FakeProcessInfo process_;
  LinuxStandardDirectories directories_{process_};
};

TEST_F(LinuxStandardDirectoriesTest, FollowsTheEnvironmentsBaseDirectories) {
  process_.variables = {{"XDG_CACHE_HOME", "/srv/cache"}, {"XDG_DATA_HOME", "/srv/data//"}};
  EXPECT_EQ(only(NSCachesDirectory), "/srv/cache");
  EXPECT_EQ(only(NSApplicationSupportDirectory), "/srv/data");
  EXPECT_EQ(only(NSLibraryDirectory), scratch_.path("Library"));
  EXPECT_THAT(directories_.directories(NSCachesDirectory, 3),
              ElementsAre("/srv/cache", "/var/cache"));
}

TEST_F(LinuxStandardDirectoriesTest, IgnoresBaseDirectoriesThatAreNoAbsolutePaths) {
  for (const char* value : {"", "cache", "./cache", "~/cache", "$HOME/cache", " /cache"}) {
    process_.variables = {{"XDG_CACHE_HOME", value},
                          {"XDG_DATA_HOME", value},
                          {"XDG_CONFIG_HOME", value},
                          {"TMPDIR", value}};
    EXPECT_EQ(only(NSCachesDirectory), scratch_.path(".cache")) << value;
    EXPECT_EQ(only(NSApplicationSupportDirectory), scratch_.path(".local/share")) << value;
    EXPECT_EQ(only(NSDownloadsDirectory), scratch_.path("Downloads")) << value;
    EXPECT_EQ(directories_.temporaryDirectory(), "/tmp/") << value;
  }
}

TEST_F(LinuxStandardDirectoriesTest, PutsTemporaryFilesWhereTheEnvironmentSays) {
  for (const auto& [value, expected] : {std::pair("/var/tmp", "/var/tmp/"),
                                        {"/var/tmp///", "/var/tmp/"},
                                        {"/", "/"},
                                        {"/a b%\n\xFF", "/a b%\n\xFF/"}}) {
    process_.variables = {{"TMPDIR", value}};
    EXPECT_EQ(directories_.temporaryDirectory(), expected);
  }
}

TEST_F(LinuxStandardDirectoriesTest, FindsDownloadsInTheUsersDirectories) {
  const std::string plain = scratch_.path("Downloads");
  EXPECT_EQ(only(NSDownloadsDirectory), plain) << "without the file";
  scratch_.write(".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Geladen\"\n");
  EXPECT_EQ(only(NSDownloadsDirectory), scratch_.path("Geladen"));
  scratch_.write(".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=garbage\n");
  EXPECT_EQ(only(NSDownloadsDirectory), plain) << "with a line that cannot be read";
  scratch_.write("settings/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"/srv/loads\"\n");
  process_.variables = {{"XDG_CONFIG_HOME", scratch_.path("settings")}};
  EXPECT_EQ(only(NSDownloadsDirectory), "/srv/loads");
}

TEST_F(LinuxStandardDirectoriesTest, SaysWhyTheUsersDirectoriesCannotBeRead) {
  const tests::ScopedDiagnostics diagnostics;
  EXPECT_EQ(only(NSDownloadsDirectory), scratch_.path("Downloads"));
  EXPECT_THAT(diagnostics.lines(), IsEmpty());
  const std::string path = scratch_.path(".config/user-dirs.dirs");
  std::filesystem::create_directories(path);
  EXPECT_EQ(only(NSDownloadsDirectory), scratch_.path("Downloads"));
  EXPECT_THAT(diagnostics.lines(), ElementsAre(testing::HasSubstr(path)));
  std::filesystem::remove(path);
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(only(NSDownloadsDirectory), scratch_.path("Downloads")) << "never waits for a pipe";
}

TEST_F(LinuxStandardDirectoriesTest, MakesTheHomesLibraryAtTheFirstSearchOnly) {
  std::ignore = directories_.directories(NSCachesDirectory, 65535);
  std::ignore = directories_.directories(NSLibraryDirectory, NSLocalDomainMask);
  EXPECT_FALSE(std::filesystem::exists(scratch_.path("Library")));
  EXPECT_EQ(only(NSLibraryDirectory), scratch_.path("Library"));
  for (const char* name : {"Library", "Library/Logs", "Library/Preferences"}) {
    struct stat status {};
    ASSERT_EQ(stat(scratch_.path(name).c_str(), &status), 0) << name;
    EXPECT_EQ(status.st_mode & 07777U, 0700U) << name;
  }
  std::filesystem::remove_all(scratch_.path("Library"));
  EXPECT_EQ(only(NSLibraryDirectory), scratch_.path("Library"));
  EXPECT_FALSE(std::filesystem::exists(scratch_.path("Library")));
}

TEST_F(LinuxStandardDirectoriesTest, ServesHomesWithAnyBytesInTheirNames) {
  for (const char* name : {"with space", "50%", "%41", "line\nbreak", "\xFF\xFE", "\xED\xA0\x80",
                           "\u05d0\u200b", "cafe\u0301", "$HOME", "\"quoted\"", "back\\slash"}) {
    process_.home = scratch_.path(name);
    std::filesystem::create_directory(process_.home);
    scratch_.write(std::string(name) + "/.config/user-dirs.dirs",
                   "XDG_DOWNLOAD_DIR=\"$HOME/My \\\"Files\\\"\"\n");
    EXPECT_EQ(directories_.homeDirectory(), process_.home);
    EXPECT_EQ(only(NSLibraryDirectory), process_.home + "/Library");
    EXPECT_TRUE(std::filesystem::exists(process_.home + "/Library/Logs"));
    EXPECT_EQ(only(NSCachesDirectory), process_.home + "/.cache");
    EXPECT_EQ(only(NSDownloadsDirectory), process_.home + "/My \"Files\"");
  }
}

TEST_F(LinuxStandardDirectoriesTest, FindsTheHomeOfAnAccount) {
  const passwd* account = getpwuid(geteuid());
  if (account == nullptr) GTEST_SKIP() << "NOT TESTED: this account has no entry";
  const std::string name = account->pw_name;
  EXPECT_EQ(directories_.homeDirectoryForUser(name), account->pw_dir);
  EXPECT_EQ(directories_.homeDirectoryForUser("root\0x"sv), std::nullopt);
}

TEST_F(LinuxStandardDirectoriesTest, HandsOnTheSystemsConfiguration) {
  std::array<char, 1024> buffer{};
  const std::size_t length = directories_.confstr(_CS_PATH, buffer);
  ASSERT_GT(length, 1U);
  ASSERT_LE(length, buffer.size());
  EXPECT_EQ(buffer[length - 1], '\0');
  EXPECT_EQ(directories_.confstr(_CS_PATH, {}), length);
}

TEST(UserDirectories, AreReadAsTheDesktopWritesThem) {
  struct Row {
    std::string_view line;
    std::optional<std::string_view> path;
  };
  constexpr Row rows[] = {{"D=\"$HOME/Downloads\"", "/h/Downloads"},
                          {"D=\"$HOME/a b\"", "/h/a b"},
                          {"D=\"$HOME/\"", "/h"},
                          {"D=\"$HOME\"", "/h"},
                          {"D=\"/srv/x/\"", "/srv/x"},
                          {"D=\"/\"", "/"},
                          {"  D = \"/x\"  ", "/x"},
                          {"\tD\t=\t\"/x\"\r", "/x"},
                          {"D=\"/x\" # a comment", "/x"},
                          {"D=\"/a\\\"b\\\\c\\$d\\`e\\f\"", "/a\"b\\c$d`ef"},
                          {"D=\"/a#b\"", "/a#b"},
                          {"D=\"/\xFF\xED\xA0\x80\"", "/\xFF\xED\xA0\x80"},
                          {"D=\"/\u05d0\u200b\ufeff\"", "/\u05d0\u200b\ufeff"},
                          {"D=\"/cafe\u0301 \ud55c \U0001F4BE\"", "/cafe\u0301 \ud55c \U0001F4BE"},
                          {"# D=\"/x\"", std::nullopt},
                          {"D=/x", std::nullopt},
                          {"D='/x'", std::nullopt},
                          {"D=\"/x", std::nullopt},
                          {"D=\"/x\\\"", std::nullopt},
                          {"D=\"/x\\", std::nullopt},
                          {"D=\"x\"", std::nullopt},
                          {"D=\"\"", std::nullopt},
                          {"D=\"~/x\"", std::nullopt},
                          {"D=\"$HOMEx\"", std::nullopt},
                          {"D=\"$XDG/x\"", std::nullopt},
                          {"D=\"$HOME/$USER\"", std::nullopt},
                          {"D=\"$HOME/`id`\"", std::nullopt},
                          {"D=\"/x\"y", std::nullopt},
                          {"D", std::nullopt},
                          {"D=", std::nullopt},
                          {"DD=\"/x\"", std::nullopt},
                          {"d=\"/x\"", std::nullopt},
                          {"export D=\"/x\"", std::nullopt},
                          {"\ufeff", std::nullopt},
                          {"D=\"/x\0y\""sv, std::nullopt},
                          {"D=\"/x\\\0y\""sv, std::nullopt},
                          {"D=\"$HOME/x\0\""sv, std::nullopt},
                          {"", std::nullopt},
                          {"\n\n", std::nullopt}};
  for (const Row& row : rows) {
    EXPECT_EQ(userDirectory(row.line, "D", "/h"), row.path) << row.line;
    const std::string among = "E=\"/other\"\n" + std::string(row.line) + "\nF=\"/more\"";
    EXPECT_EQ(userDirectory(among, "D", "/h"), row.path) << row.line;
  }
}

TEST(UserDirectories, TakeTheLastLineThatCanBeRead) {
  EXPECT_EQ(userDirectory("D=\"/a\"\nD=\"/b\"\nD=bad\n#D=\"/c\"", "D", "/h"), "/b");
}

TEST(UserDirectories, AreReadInTimeThatGrowsWithTheirSizeOnly) {
  std::string huge;
  while (huge.size() < 1'000'000) huge += "D=\"\\";
  EXPECT_EQ(userDirectory(huge, "D", "/h"), std::nullopt);
  EXPECT_EQ(userDirectory(std::string(1'000'000, '\n') + "D=\"/x\"", "D", "/h"), "/x");
}

}  // namespace
}  // namespace vornix
