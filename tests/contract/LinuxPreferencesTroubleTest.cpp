#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iterator>

#include "tests/contract/LinuxPreferencesFixture.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

class LinuxPreferencesTroubleTest : public LinuxPreferencesFixture {};

TEST_F(LinuxPreferencesTroubleTest, SetsABrokenFileAsideBeforeTheFirstWriteAndSaysSo) {
  const std::string broken[] = {"no property list", "", "<plist><array/></plist>",
                                std::string("bplist00") + std::string(40, '\xff')};
  for (std::size_t index = 0; index < std::size(broken); ++index) {
    lines_.clear();
    folder_.write(kFile, broken[index]);
    EXPECT_EQ(copy("Key"), std::nullopt);
    EXPECT_EQ(bytesOf(path()), broken[index]);
    ASSERT_EQ(set("Key", Value(1)), std::nullopt);
    EXPECT_EQ(copyAfresh("Key"), Value(1));
    const std::string number = index == 0 ? "" : "-" + std::to_string(index + 1);
    EXPECT_EQ(bytesOf(path() + ".damaged" + number), broken[index]);
    ASSERT_FALSE(lines_.empty());
    EXPECT_NE(lines_.back().find(".damaged" + number), std::string::npos) << lines_.back();
  }
  EXPECT_EQ(bytesOf(path() + ".damaged"), broken[0]);
}

TEST_F(LinuxPreferencesTroubleTest, SetsAsideWhatIsNoFileOrTooLarge) {
  fs::create_directories(path() + "/inside");
  EXPECT_EQ(copy("Key"), std::nullopt);
  ASSERT_EQ(set("Key", Value(1)), std::nullopt);
  EXPECT_TRUE(fs::exists(path() + ".damaged/inside"));
  const std::string large(5000, 'x');
  folder_.write(kFile, large);
  EXPECT_EQ(copy("Key"), std::nullopt);
  ASSERT_EQ(set("Key", Value(2)), std::nullopt);
  EXPECT_EQ(bytesOf(path() + ".damaged-2"), large);
  EXPECT_EQ(copyAfresh("Key"), Value(2));
}

TEST_F(LinuxPreferencesTroubleTest, NeverWaitsForAPipe) {
  fs::create_directories(folder_.path("Library/Preferences"));
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  EXPECT_EQ(copy("Key"), std::nullopt);
}

TEST_F(LinuxPreferencesTroubleTest, ReportsAnUnreadableFileOnceNotAtEveryRead) {
  folder_.write(kFile, "garbage");
  for (int round = 0; round < 5; ++round) EXPECT_EQ(copy("Key"), std::nullopt);
  EXPECT_EQ(lines_.size(), 1U);
}

TEST_F(LinuxPreferencesTroubleTest, WhoIsToldOfTroubleMayReadTheSamePreferences) {
  folder_.write(kFile, "garbage");
  setDiagnosticReceiver([this](std::string_view line) {
    lines_.emplace_back(line);
    lines_.back() += copy("Key") ? ": set" : ": not set";
  });
  EXPECT_EQ(copy("Key"), std::nullopt);
  ASSERT_EQ(lines_.size(), 1U);
  EXPECT_TRUE(lines_[0].ends_with("it counts as empty: not set")) << lines_[0];
  EXPECT_EQ(set("Key", Value(1)), std::nullopt);
  ASSERT_EQ(lines_.size(), 2U);
  EXPECT_TRUE(lines_[1].ends_with(".damaged: set")) << lines_[1];
  fs::remove_all(folder_.path("Library"));
  folder_.write("Library", "a file where the folder should be");
  EXPECT_TRUE(set("Key", Value(2)).has_value());
  EXPECT_FALSE(store_.synchronize(kDomain));
  EXPECT_EQ(lines_.size(), 3U);
}

TEST_F(LinuxPreferencesTroubleTest, KeepsAValueThatCannotBeWrittenAndStoresItWithTheNextSuccess) {
  folder_.write("Library", "a file where the folder should be");
  const auto error = set("First", Value(1));
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->underlyingErrno, ENOTDIR);
  EXPECT_EQ(copy("First"), Value(1));
  EXPECT_FALSE(store_.synchronize(kDomain));
  EXPECT_FALSE(store_.synchronizeAll());
  fs::remove(folder_.path("Library"));
  EXPECT_EQ(set("Second", Value(2)), std::nullopt);
  EXPECT_EQ(copyAfresh("First"), Value(1));
  EXPECT_EQ(copyAfresh("Second"), Value(2));
}

TEST_F(LinuxPreferencesTroubleTest, LeavesTheOldFileWhenTheDiskIsFull) {
  ASSERT_EQ(set("Old", Value("kept")), std::nullopt);
  const std::string before = bytesOf(path());
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // A file that may not grow stands for a disk without room.
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{32, 32};
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto error = set("New", Value("lost?"));
    _exit(error && copy("New") == Value("lost?") && copy("Old") == Value("kept") ? 0 : 1);
  }
  EXPECT_EQ(statusOf(child), 0);
  EXPECT_EQ(bytesOf(path()), before);
  EXPECT_EQ(namesBeside().size(), 2U);
}

TEST_F(LinuxPreferencesTroubleTest, WritesThroughALinkAndKeepsIt) {
  fs::create_directories(folder_.path("Library/Preferences"));
  fs::create_directories(folder_.path("elsewhere"));
  fs::create_symlink("../../elsewhere/real.plist", path());
  ASSERT_EQ(set("Key", Value(1)), std::nullopt);
  ASSERT_EQ(set("Other", Value(2)), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(path()));
  EXPECT_TRUE(fs::is_regular_file(folder_.path("elsewhere/real.plist")));
  EXPECT_EQ(copyAfresh("Key"), Value(1));
}

TEST_F(LinuxPreferencesTroubleTest, RefusesALinkThatLeadsInACircle) {
  fs::create_directories(folder_.path("Library/Preferences"));
  fs::create_symlink("com.example.domain.plist", path());
  const auto error = set("Key", Value(1));
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->underlyingErrno, ELOOP);
  EXPECT_EQ(copy("Key"), Value(1));
}

TEST_F(LinuxPreferencesTroubleTest, GivesUpOnALockThatIsNeverReleasedAndRetriesLater) {
  ASSERT_EQ(set("Old", Value(1)), std::nullopt);
  const std::string lockPath = folder_.path("Library/Preferences/.com.example.domain.plist.lock");
  const int lock = open(lockPath.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  const auto error = set("Key", Value(2));
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->underlyingErrno, ETIMEDOUT);
  EXPECT_EQ(copy("Old"), Value(1));
  EXPECT_EQ(copyAfresh("Key"), std::nullopt);
  close(lock);
  EXPECT_TRUE(store_.synchronize(kDomain));
  EXPECT_EQ(copyAfresh("Key"), Value(2));
}

TEST_F(LinuxPreferencesTroubleTest, RefusesWhatNoPropertyListCanHoldAndForgetsIt) {
  const Value refused[] = {Null(), std::string("a\0b", 3), "\xff", Array{Null()},
                           Dictionary{{"\xff", 1}}};
  for (const Value& value : refused) {
    EXPECT_TRUE(set("Key", value).has_value());
    EXPECT_EQ(copy("Key"), std::nullopt);
  }
  EXPECT_TRUE(set(std::string_view("a\0b", 3), Value(1)).has_value());
  EXPECT_TRUE(store_.synchronize(kDomain));
}

TEST_F(LinuxPreferencesTroubleTest, RefusesDomainsThatLeadElsewhere) {
  for (const std::string_view domain :
       {std::string_view("../escape"), std::string_view("/etc/x"), std::string_view("")}) {
    EXPECT_TRUE(store_.setValue("Key", Value(1), domain).has_value()) << domain;
    EXPECT_EQ(store_.copyValue("Key", domain, PreferencesUser::Current), std::nullopt);
  }
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

}  // namespace
}  // namespace vornix::contract
