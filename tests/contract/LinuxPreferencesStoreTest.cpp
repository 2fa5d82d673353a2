#include "platform/linux/preferences/LinuxPreferencesStore.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <plist/plist.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <limits>
#include <vector>

#include "platform/linux/preferences/PropertyList.h"
#include "tests/contract/LinuxPreferencesFixture.h"

namespace vornix::contract {
namespace {

namespace fs = std::filesystem;

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777U;
}

class LinuxPreferencesStoreTest : public LinuxPreferencesFixture {};

TEST_F(LinuxPreferencesStoreTest, MakesNothingWhenItOnlyReads) {
  EXPECT_EQ(copy("Key"), std::nullopt);
  EXPECT_TRUE(store_.synchronize(kDomain));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(LinuxPreferencesStoreTest, MakesTheHomesSkeletonAtTheFirstWrite) {
  EXPECT_EQ(set("Key", Value(1)), std::nullopt);
  for (const char* name : {"Library", "Library/Preferences", "Library/Logs"}) {
    EXPECT_EQ(modeOf(folder_.path(name)), 0700U) << name;
  }
  EXPECT_EQ(modeOf(path()), 0600U);
  EXPECT_TRUE(bytesOf(path()).starts_with("bplist00"));
}

TEST_F(LinuxPreferencesStoreTest, ReadsXmlAndWritesBinary) {
  folder_.write(kFile,
                "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Count</key>"
                "<integer>-5</integer><key>When</key><date>2001-01-01T00:00:10Z</date>"
                "<key>Yes</key><true/><key>List</key><array><string>a &amp; b</string></array>"
                "</dict></plist>");
  EXPECT_EQ(copy("Count"), Value(-5));
  EXPECT_EQ(copy("When"), Value(Date{10}));
  EXPECT_EQ(copy("List"), Value(Array{"a & b"}));
  EXPECT_EQ(set("New", Value("x")), std::nullopt);
  EXPECT_TRUE(bytesOf(path()).starts_with("bplist00"));
  EXPECT_EQ(copyAfresh("Count"), Value(-5));
  EXPECT_EQ(copyAfresh("Yes"), Value(true));
  EXPECT_EQ(copyAfresh("New"), Value("x"));
}

TEST_F(LinuxPreferencesStoreTest, SeesAnotherProgramsChangesAtOnce) {
  LinuxPreferencesStore other(folder_.path());
  for (int round = 0; round < 50; ++round) {
    ASSERT_EQ(other.setValue("Key", Value(round), kDomain), std::nullopt);
    ASSERT_EQ(copy("Key"), Value(round));
  }
  fs::remove(path());
  EXPECT_EQ(copy("Key"), std::nullopt);
}

TEST_F(LinuxPreferencesStoreTest, SeesAFileThatIsRewrittenInPlace) {
  const auto xml = [](char digit) {
    return std::string("<plist><dict><key>Key</key><integer>") + digit +
           "</integer></dict></plist>";
  };
  for (char digit = '0'; digit <= '9'; ++digit) {
    folder_.write(kFile, xml(digit));
    EXPECT_EQ(copy("Key"), Value(digit - '0'));
  }
}

TEST_F(LinuxPreferencesStoreTest, PreservesKeysAndTypesThatItDoesNotKnow) {
  const PropertyListNode root = makeDictionaryNode();
  plist_dict_set_item(root.get(), "Identifier", plist_new_uid(7));
  plist_dict_set_item(root.get(), "Wide", plist_new_uint(1ULL << 62U));
  plist_dict_set_item(root.get(), "Date", nodeOfValue(Date{123456789.123456789}).release());
  plist_dict_set_item(root.get(), "Nested",
                      nodeOfValue(Dictionary{{"a", Array{Data{std::byte{1}}}}}).release());
  plist_t huge = nullptr;
  const std::string xml = "<plist><integer>18446744073709551615</integer></plist>";
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &huge);
  plist_dict_set_item(root.get(), "Huge", huge);
  folder_.write(kFile, binaryPropertyList(root.get()));

  ASSERT_EQ(set("Mine", Value(1)), std::nullopt);
  ASSERT_EQ(set("Mine", std::nullopt), std::nullopt);
  const PropertyListNode after = parsePropertyListNode(bytesOf(path()));
  ASSERT_TRUE(isDictionaryNode(after.get()));
  EXPECT_EQ(plist_dict_get_size(after.get()), 5U);
  for (const char* key : {"Identifier", "Wide", "Date", "Nested", "Huge"}) {
    EXPECT_EQ(binaryPropertyList(plist_dict_get_item(after.get(), key)),
              binaryPropertyList(plist_dict_get_item(root.get(), key)))
        << key;
  }
  EXPECT_EQ(copy("Identifier"), Value(Dictionary{{"CF$UID", 7}}));
  EXPECT_EQ(copy("Huge"), Value(std::numeric_limits<std::int64_t>::max()));
}

TEST_F(LinuxPreferencesStoreTest, KeepsDatesExactly) {
  for (const double seconds : {0.0, -0.5, 500000000.12345678, 1e-9, 1e15, 800000000.0000001}) {
    ASSERT_EQ(set("Date", Value(Date{seconds})), std::nullopt);
    EXPECT_EQ(copyAfresh("Date"), Value(Date{seconds})) << seconds;
  }
}

TEST_F(LinuxPreferencesStoreTest, LosesNothingBetweenProcesses) {
  constexpr int kKeys = 200;
  std::vector<pid_t> children;
  for (int process = 0; process < 2; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      LinuxPreferencesStore store(folder_.path(), "",
                                  {.lockPatience = std::chrono::milliseconds(60000)});
      bool good = true;
      for (int key = 0; key < kKeys; ++key) {
        const std::string name = std::to_string(process) + "." + std::to_string(key);
        good = !store.setValue(name, Value(key), kDomain) && good;
      }
      _exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) EXPECT_EQ(statusOf(child), 0);
  for (int process = 0; process < 2; ++process) {
    for (int key = 0; key < kKeys; ++key) {
      ASSERT_EQ(LinuxPreferencesStore(folder_.path())
                    .copyValue(std::to_string(process) + "." + std::to_string(key), kDomain,
                               PreferencesUser::Current),
                Value(key));
    }
  }
}

TEST_F(LinuxPreferencesStoreTest, LeavesTheOldOrTheNewFileWhenKilledWhileWriting) {
  for (int round = 0; round < 20; ++round) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      LinuxPreferencesStore store(folder_.path());
      for (std::int64_t count = 0;; ++count) {
        if (store.setValue("Count", Value(count), kDomain)) _exit(1);
        if (write(ends[1], &count, sizeof(count)) != sizeof(count)) _exit(1);
      }
    }
    close(ends[1]);
    std::int64_t told = -1;
    for (int seen = 0; seen <= round; ++seen) {
      ASSERT_EQ(read(ends[0], &told, sizeof(told)), static_cast<ssize_t>(sizeof(told)));
    }
    ASSERT_EQ(kill(child, SIGKILL), 0);
    EXPECT_TRUE(WIFSIGNALED(statusOf(child)));
    while (read(ends[0], &told, sizeof(told)) == static_cast<ssize_t>(sizeof(told))) {
    }
    close(ends[0]);
    const auto left = copyAfresh("Count");
    ASSERT_TRUE(left && left->is<std::int64_t>());
    EXPECT_GE(left->integerValue(), told);
    EXPECT_LE(left->integerValue(), told + 1);
  }
  EXPECT_EQ(set("Mine", Value(1)), std::nullopt);
  EXPECT_EQ(namesBeside(), (std::vector<std::string>{".com.example.domain.plist.lock",
                                                     "com.example.domain.plist"}));
  EXPECT_TRUE(lines_.empty());
}

TEST_F(LinuxPreferencesStoreTest, ReadsTheDomainsOfAnyUser) {
  folder_.write("any/com.example.domain.plist",
                "<plist><dict><key>Key</key><string>everybody</string></dict></plist>");
  EXPECT_EQ(store_.copyValue("Key", kDomain, PreferencesUser::Any), Value("everybody"));
  EXPECT_EQ(copy("Key"), std::nullopt);
}

}  // namespace
}  // namespace vornix::contract
