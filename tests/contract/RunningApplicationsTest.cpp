#include "platform/linux/desktop/applications/RunningApplications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/FakeApplicationBus.h"
#include "tests/support/ScratchFolder.h"

namespace vornix::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr std::uint32_t kUser = 1000;

// One process as the kernel would show it.
struct Shown {
  std::int32_t process = 0;
  std::int32_t parent = 1;
  int start = 0;
  std::string unit{};
  std::vector<std::string> environment{};
  // Below the scratch folder.
  std::string program = "bin/unknown";
  std::vector<std::string> arguments{};
  std::string state = "S";
  std::uint32_t user = kUser;
  std::string name = "program";
};

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const auto& text : texts) all += text + '\0';
  return all;
}

class RunningApplicationsTest : public testing::Test {
 protected:
  RunningApplicationsTest() {
    folder.write("proc/stat", "cpu 1 2 3\nbtime 1700000000\nprocesses 5\n");
    makeProgram("bin/unknown");
  }

  std::string makeProgram(const std::string& name) const {
    auto path = folder.write(name, "");
    EXPECT_EQ(chmod(path.c_str(), 0755), 0);
    return path;
  }

  std::string install(const std::string& identifier, const std::string& exec,
                      const std::string& more = "") const {
    return folder.write("applications/" + identifier + ".desktop",
                        "[Desktop Entry]\nType=Application\nExec=" + exec + "\n" + more);
  }

  void show(const Shown& shown) const {
    const std::string root = "proc/" + std::to_string(shown.process) + "/";
    const std::string user = std::to_string(shown.user);
    folder.write(root + "status", "Name:\tx\nUid:\t" + user + "\t" + user + "\t" + user + "\n");
    folder.write(root + "stat", std::to_string(shown.process) + " (" + shown.name + ") " +
                                    shown.state + " " + std::to_string(shown.parent) +
                                    " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 " +
                                    std::to_string(shown.start) + " 0 0\n");
    folder.write(root + "cgroup", "0::" + (shown.unit.empty() ? "/" : shown.unit) + "\n");
    folder.write(root + "environ", joined(shown.environment));
    const std::string program = folder.path(shown.program);
    folder.write(root + "cmdline",
                 joined(shown.arguments.empty() ? std::vector{program} : shown.arguments));
    EXPECT_EQ(symlink(program.c_str(), folder.path(root + "exe").c_str()), 0);
    EXPECT_EQ(symlink(folder.path("bin").c_str(), folder.path(root + "cwd").c_str()), 0);
  }

  std::vector<RunningApplicationEntry> entries() {
    const InstalledApplications installed({folder.path("applications")},
                                          ProgramSearch({folder.path("bin")}), "");
    return findRunningApplications(installed, {folder.path("proc"), kUser}, bus, busAddress);
  }

  std::vector<std::pair<std::string, std::int32_t>> running() {
    std::vector<std::pair<std::string, std::int32_t>> found;
    for (const auto& entry : entries())
      found.emplace_back(entry.bundleIdentifier, entry.processIdentifier);
    return found;
  }

  tests::ScratchFolder folder;
  tests::FakeApplicationBus bus;
  std::string busAddress = "unix:path=/run/user/1000/bus";
};

TEST_F(RunningApplicationsTest, FindsNothingWhereNothingRuns) {
  show({.process = 10});
  EXPECT_THAT(running(), IsEmpty());
  EXPECT_EQ(bus.listsAsked, 1);
}

TEST_F(RunningApplicationsTest, TakesTheOwnerOfTheNameOfAnInstalledApplication) {
  install("org.example.App", "app");
  show({.process = 10});
  show({.process = 11});
  bus.owners = {{"org.example.App", 11}, {"org.example.NotInstalled", 10}};
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 11)));
}

TEST_F(RunningApplicationsTest, CountsAnOwnerWhoseProcessCannotBeSeen) {
  install("org.example.One", "app");
  install("org.example.Two", "app");
  bus.owners = {{"org.example.One", 0}, {"org.example.Two", 4242}};
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.One", 0), Pair("org.example.Two", 0)));
}

TEST_F(RunningApplicationsTest, TakesTheFirstProcessOfAnApplicationUnit) {
  show({.process = 12, .start = 5, .unit = "/a/app-org.example.App-1.scope"});
  show({.process = 13, .start = 6, .unit = "/a/app-org.example.App-1.scope/sub"});
  show({.process = 9, .start = 7, .unit = "/a/app-gnome-my\\x2dapp-2.scope"});
  show({.process = 14, .start = 8, .unit = "/a/app-org.example.App-3.scope"});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 12), Pair("my-app", 9),
                                     Pair("org.example.App", 14)));
}

TEST_F(RunningApplicationsTest, ReadsTheServiceManagersHierarchyBesideOlderOnes) {
  show({.process = 10});
  folder.write("proc/10/cgroup",
               "5:memory:/x/app-wrong-1.scope\n1:name=systemd:/a/app-org.example.App-1.scope\n"
               "0::/\n");
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 10)));
}

TEST_F(RunningApplicationsTest, PrefersAnInstalledIdentifierWhereAUnitsNameIsAmbiguous) {
  show({.process = 10, .unit = "/app-launcher-org.example.App.service"});
  EXPECT_THAT(running(), ElementsAre(Pair("launcher", 10)));
  install("org.example.App", "app");
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 10)));
}

TEST_F(RunningApplicationsTest, BelievesALaunchersVariablesOnlyForTheProcessTheyName) {
  const auto file = install("org.example.App", "app");
  const std::string launched = "GIO_LAUNCHED_DESKTOP_FILE=" + file;
  show({.process = 10, .environment = {launched, "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}});
  show({.process = 11, .environment = {launched, "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}});
  show({.process = 12, .environment = {launched}});
  show({.process = 13,
        .environment = {"GIO_LAUNCHED_DESKTOP_FILE=/x/other.desktop",
                        "GIO_LAUNCHED_DESKTOP_FILE_PID=13"}});
  show({.process = 14,
        .environment = {"GIO_LAUNCHED_DESKTOP_FILE=/x/other", "GIO_LAUNCHED_DESKTOP_FILE_PID=14"}});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 10), Pair("other", 13)));
}

TEST_F(RunningApplicationsTest, LeavesOutWhatRunsInAnotherSessionUnlessItsUnitOrNameSaysIt) {
  makeProgram("bin/app");
  const auto file = install("org.example.App", "app");
  const std::string elsewhere = "DBUS_SESSION_BUS_ADDRESS=unix:path=/tmp/other";
  const std::vector<std::string> launched{"GIO_LAUNCHED_DESKTOP_FILE=" + file,
                                          "GIO_LAUNCHED_DESKTOP_FILE_PID=10", elsewhere};
  show({.process = 10, .environment = launched});
  show({.process = 11, .environment = {elsewhere}, .program = "bin/app"});
  show({.process = 12, .unit = "/app-org.example.App-1.scope", .environment = {elsewhere}});
  show({.process = 13,
        .environment = {"DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/1000/bus,guid=1"},
        .program = "bin/app"});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 12), Pair("org.example.App", 13)));
  busAddress.clear();
  EXPECT_THAT(running(), SizeIs(4));
}

TEST_F(RunningApplicationsTest, NamesANestedEntryByItsIdentifier) {
  const auto file = install("kde/chess", "app");
  show({.process = 10,
        .environment = {"GIO_LAUNCHED_DESKTOP_FILE=" + file, "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}});
  EXPECT_THAT(running(), ElementsAre(Pair("kde-chess", 10)));
}

TEST_F(RunningApplicationsTest, RecognisesTheProgramOfAnEntry) {
  makeProgram("bin/app");
  install("org.example.App", "app %F");
  show({.process = 10, .program = "bin/app", .arguments = {"app", "/some/file"}});
  show({.process = 11, .program = "bin/other"});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 10)));
}

TEST_F(RunningApplicationsTest, RecognisesAProgramThatWasReplacedOnDisk) {
  makeProgram("bin/app");
  install("org.example.App", "app");
  show({.process = 10, .program = "bin/app (deleted)"});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 10)));
}

TEST_F(RunningApplicationsTest, LeavesHelpersOfTheSameProgramOut) {
  makeProgram("bin/app");
  install("org.example.App", "app");
  show({.process = 10, .start = 1, .program = "bin/app"});
  show({.process = 11, .parent = 10, .start = 2, .program = "bin/unknown"});
  show({.process = 12, .parent = 11, .start = 3, .program = "bin/app"});
  show({.process = 13, .parent = 1, .start = 4, .program = "bin/app"});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 10), Pair("org.example.App", 13)));
}

TEST_F(RunningApplicationsTest, RecognisesAScriptBehindItsInterpreter) {
  const auto script = makeProgram("bin/script");
  makeProgram("bin/python");
  install("org.example.Script", script + " %U");
  show({.process = 10, .program = "bin/python", .arguments = {"python", script}});
  show({.process = 11, .program = "bin/python", .arguments = {"python", "-I", script, "x"}});
  show({.process = 12, .program = "bin/python", .arguments = {"python", "script"}});
  show({.process = 13, .program = "bin/python", .arguments = {"python", "other.py"}});
  show({.process = 14, .program = "bin/python", .arguments = {"python"}});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.Script", 10), Pair("org.example.Script", 11),
                                     Pair("org.example.Script", 12)));
}

TEST_F(RunningApplicationsTest, TakesTheEntryWithTheLongestCommandLineThatFits) {
  makeProgram("bin/office");
  install("office", "office %U");
  install("office-writer", "office --writer %U");
  show({.process = 10, .program = "bin/office", .arguments = {"office", "--writer", "/x"}});
  show({.process = 11, .program = "bin/office", .arguments = {"office", "--calc"}});
  EXPECT_THAT(running(), ElementsAre(Pair("office-writer", 10), Pair("office", 11)));
}

TEST_F(RunningApplicationsTest, ProgramsInTerminalsAreNoApplications) {
  makeProgram("bin/python");
  install("python", "python", "Terminal=true\n");
  show({.process = 10, .program = "bin/python"});
  EXPECT_THAT(running(), IsEmpty());
}

TEST_F(RunningApplicationsTest, StrongerEvidenceComesFirst) {
  makeProgram("bin/app");
  install("by.name", "unused");
  install("by.program", "app");
  const auto file = install("by.launcher", "unused");
  const auto launchedAs = [&](std::int32_t process) {
    return std::vector<std::string>{"GIO_LAUNCHED_DESKTOP_FILE=" + file,
                                    "GIO_LAUNCHED_DESKTOP_FILE_PID=" + std::to_string(process)};
  };
  const std::string unit = "/app-by.unit-1.scope";
  show({.process = 10, .unit = unit, .environment = launchedAs(10), .program = "bin/app"});
  show({.process = 11,
        .unit = "/app-by.unit-2.scope",
        .environment = launchedAs(11),
        .program = "bin/app"});
  show({.process = 12, .environment = launchedAs(12), .program = "bin/app"});
  show({.process = 13, .program = "bin/app"});
  bus.owners = {{"by.name", 10}};
  EXPECT_THAT(running(), ElementsAre(Pair("by.name", 10), Pair("by.unit", 11),
                                     Pair("by.launcher", 12), Pair("by.program", 13)));
}

TEST_F(RunningApplicationsTest, LooksOnlyAtLivingProcessesOfThePerson) {
  const std::string unit = "/app-org.example.App-1.scope";
  show({.process = 10, .unit = unit, .user = 0});
  show({.process = 11, .unit = unit, .state = "Z"});
  show({.process = 12, .unit = unit, .name = "odd) R 1 (name"});
  EXPECT_THAT(running(), ElementsAre(Pair("org.example.App", 12)));
}

TEST_F(RunningApplicationsTest, AnswersInLaunchOrderWithLaunchDates) {
  show({.process = 20, .start = 300, .unit = "/app-second-1.scope"});
  show({.process = 30, .start = 100, .unit = "/app-first-1.scope"});
  const auto found = entries();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].bundleIdentifier, "first");
  EXPECT_EQ(found[1].bundleIdentifier, "second");
  const auto ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
  EXPECT_DOUBLE_EQ(found[0].launchDate.unixTime(), 1700000000 + 100 / ticks);
  EXPECT_DOUBLE_EQ(found[1].launchDate.unixTime(), 1700000000 + 300 / ticks);
}

TEST_F(RunningApplicationsTest, SurvivesProcessesThatVanishOrMakeNoSense) {
  folder.write("proc/10/other", "");
  folder.write("proc/11/status", "Uid:\t1000\n");
  folder.write("proc/12/status", "Uid:\t1000\t\n");
  folder.write("proc/12/stat", "12 (x");
  folder.write("proc/13/status", "Uid:\t1000\t\n");
  folder.write("proc/13/stat", "13 (x) S 1");
  folder.write("proc/14/status", "Uid:");
  folder.write("proc/99999999999999999999/stat", "");
  folder.write("proc/self/stat", "");
  show({.process = 15, .parent = 16, .program = "bin/app"});
  show({.process = 16, .parent = 15, .program = "bin/app"});
  makeProgram("bin/app");
  install("app", "app");
  folder.write("proc/17/status", "Uid:\t1000\t\n");
  folder.write("proc/17/stat",
               "17 (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 99999999999999999999999 0\n");
  EXPECT_THAT(running(), ElementsAre(Pair("app", 15)));
}

TEST_F(RunningApplicationsTest, AFolderWithoutProcessesIsNoTrouble) {
  const InstalledApplications installed({}, ProgramSearch({}), "");
  EXPECT_THAT(findRunningApplications(installed, {folder.path("nowhere"), kUser}, bus, busAddress),
              IsEmpty());
}

}  // namespace
}  // namespace vornix::desktop
