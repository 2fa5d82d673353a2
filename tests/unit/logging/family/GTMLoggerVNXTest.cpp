#include "logging/family/GTMLogger+VNX.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string_view>

#include "logging/GTMArrayCompositeLogWriter.h"
#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "logging/GTMLogger.h"
#include "tests/fakes/FakeFileHandle.h"
#include "tests/fakes/FakeFileTree.h"
#include "tests/fakes/FakeStandardDirectories.h"
#include "tests/fakes/FakeSystemClock.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using fakes::processFiles;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

TEST(LogPath, IsTheProductsLogInTheLogFolder) {
  using Row = std::pair<std::optional<std::string>, std::string>;
  const std::string zero("/a\0b", 4);
  const Row rows[] = {
      {"/home/ada/Library/Logs/com.orvane.Vornix3",
       "/home/ada/Library/Logs/com.orvane.Vornix3/Vornix.log"},
      {std::nullopt, "(null)/Vornix.log"},
      {"", "/Vornix.log"},
      {"/", "//Vornix.log"},
      {"/a/", "/a//Vornix.log"},
      {"a", "a/Vornix.log"},
      {"~", "/home/ada/Vornix.log"},
      {"~/Logs", "/home/ada/Logs/Vornix.log"},
      {"~/", "/home/ada/Vornix.log"},
      {"~grace/Logs", "/home/grace/Logs/Vornix.log"},
      {"~nobody", "~nobody/Vornix.log"},
      {"~~", "~~/Vornix.log"},
      {"/~/a", "/~/a/Vornix.log"},
      {"a/~", "a/~/Vornix.log"},
      {" ~", " ~/Vornix.log"},
      {"/100%", "/100%/Vornix.log"},
      {"/%@ %d %s", "/%@ %d %s/Vornix.log"},
      {"/a b\nc", "/a b\nc/Vornix.log"},
      {"/\xC3\xA9", "/\xC3\xA9/Vornix.log"},
      {"/e\xCC\x81", "/e\xCC\x81/Vornix.log"},
      {"/\xF0\x9F\x98\x80", "/\xF0\x9F\x98\x80/Vornix.log"},
      {"/\xEF\xBB\xBF\xE2\x80\x8B", "/\xEF\xBB\xBF\xE2\x80\x8B/Vornix.log"},
      {"/caf\xE9\xFF", "/caf\xE9\xFF/Vornix.log"},
      {"/\xED\xA0\x80", "/\xED\xA0\x80/Vornix.log"},
      {zero, zero + "/Vornix.log"},
      {"/" + std::string(100000, 'x'), "/" + std::string(100000, 'x') + "/Vornix.log"},
  };
  fakes::standardDirectories().homesOfUsers["grace"] = "/home/grace";
  for (const auto& [folder, path] : rows) {
    EXPECT_EQ(vnx_pathForLog(folder), path) << folder.value_or("none").substr(0, 50);
  }
}

TEST(LogPath, StartsWithThePlaceholderWhenTheCatalogueHasOnlyJustMadeTheFolder) {
  fakes::fileTree().clear();
  fakes::fileTree().addFolder("/home/ada/Library/Logs");
  EXPECT_EQ(vnx_pathForLog(), "(null)/Vornix.log");
  EXPECT_EQ(vnx_pathForLog(), "/home/ada/Library/Logs/com.orvane.Vornix3/Vornix.log");
}

TEST(LogPath, LeadsIntoAMissingFolderWhereTheCatalogueCannotMakeIt) {
  fakes::fileTree().clear();
  EXPECT_EQ(vnx_pathForLog(), "/home/ada/Library/Logs/com.orvane.Vornix3/Vornix.log");
  EXPECT_EQ(fakes::fileTree().resolve("/home/ada/Library/Logs/com.orvane.Vornix3", true),
            std::nullopt);
}

class FamilyLogger : public testing::Test {
 protected:
  FamilyLogger() {
    fakes::processClock().setNow(Date::fromUnixTime(1478307245.679));
    processFiles().addFolder("/logs");
    processFiles().standardOutput->clear();
  }
  ~FamilyLogger() override {
    processFiles().standardOutput->failWrites(false);
    GTMLogger::setSharedLogger(nullptr);
  }

  static std::string line(int level, const std::string& rest) {
    return "2016-11-05 00:54:05.679 program\\[4711/0x[0-9a-f]+\\] \\[lvl=" + std::to_string(level) +
           "\\] " + rest + "\n";
  }
  static std::string contents(std::string_view path) {
    return processFiles().fileAtPath(path)->contents;
  }
  static std::string output() { return processFiles().standardOutput->contents(); }
};

TEST_F(FamilyLogger, AppendsADebugMessageToTheFileAndPrintsTheSameLineOnStandardOutput) {
  initVNXLogger("/logs/debug.log");
  GTMLogger::sharedLogger()->logDebug("x");
  EXPECT_THAT(contents("/logs/debug.log"), MatchesRegex(line(1, "\\(unknown\\) x")));
  EXPECT_EQ(output(), contents("/logs/debug.log"));
}

TEST_F(FamilyLogger, WritesDebugToAssertAndDropsEveryOtherLevel) {
  initVNXLogger("/logs/levels.log");
  const text::FormatArguments none;
  for (const LogLevel level : {-1, 0, 1, 2, 3, 4, 5, 9}) {
    GTMLogger::sharedLogger()->logInternalFunc("foo", "x", &none, level);
  }
  EXPECT_THAT(contents("/logs/levels.log"),
              MatchesRegex(line(1, "foo\\(\\) x") + line(2, "foo\\(\\) x") +
                           line(3, "foo\\(\\) x") + line(4, "foo\\(\\) x")));
  EXPECT_EQ(output(), contents("/logs/levels.log"));
}

TEST_F(FamilyLogger, IsMadeOfTheStatedParts) {
  initVNXLogger("/logs/parts.log");
  const auto logger = GTMLogger::sharedLogger();
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogStandardFormatter>(logger->formatter()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogMininumLevelFilter>(logger->filter()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMArrayCompositeLogWriter>(logger->writer()), nullptr);
}

TEST_F(FamilyLogger, MakesTheFileEmptyAndReadableByAllWhomTheMaskAllows) {
  initVNXLogger("/logs/new.log");
  EXPECT_EQ(contents("/logs/new.log"), "");
  EXPECT_EQ(processFiles().fileAtPath("/logs/new.log")->mode, 0666U);
}

TEST_F(FamilyLogger, GoesOnAtTheEndOfAnOldFile) {
  NSFileHandle::openForAppending("/logs/old.log", 0600)->writeData("before\n");
  initVNXLogger("/logs/old.log");
  GTMLogger::sharedLogger()->logInfo("after");
  EXPECT_THAT(contents("/logs/old.log"), MatchesRegex("before\n" + line(2, "\\(unknown\\) after")));
}

TEST_F(FamilyLogger, WritesToStandardOutputOnlyWhenTheFileCannotBeOpened) {
  initVNXLogger("/nowhere/x.log");
  GTMLogger::sharedLogger()->logDebug("x");
  EXPECT_THAT(output(), MatchesRegex(line(1, "\\(unknown\\) x")));
  EXPECT_EQ(processFiles().fileAtPath("/nowhere/x.log"), nullptr);
}

TEST_F(FamilyLogger, SaysThroughTheFormerLoggerThatTheFileCannotBeOpened) {
  const fakes::ScopedSharedLogger former;
  initVNXLogger("/nowhere/100%@.log");
  EXPECT_THAT(
      former.messages(LogLevelDebug),
      ElementsAre(
          "Failed to create file handle for file /nowhere/100%@.log. Will write to stdout."));
  GTMLogger::sharedLogger()->logDebug("x");
  EXPECT_EQ(former.messages().size(), 1U);
}

TEST_F(FamilyLogger, KeepsThatToItselfWithTheStandardLogger) {
  GTMLogger::setSharedLogger(nullptr);
  initVNXLogger("/nowhere/x.log");
  EXPECT_EQ(output(), "");
}

TEST_F(FamilyLogger, SaysNothingWhenTheFileOpens) {
  const fakes::ScopedSharedLogger former;
  initVNXLogger("/logs/silent.log");
  EXPECT_THAT(former.messages(), IsEmpty());
}

TEST_F(FamilyLogger, KeepsTheFileWhenStandardOutputFailsAndTheOtherWayRound) {
  initVNXLogger("/logs/half.log");
  processFiles().standardOutput->failWrites(true);
  EXPECT_NO_THROW(GTMLogger::sharedLogger()->logError("only in the file"));
  processFiles().standardOutput->failWrites(false);
  processFiles().fileAtPath("/logs/half.log")->failing = true;
  EXPECT_NO_THROW(GTMLogger::sharedLogger()->logError("only printed"));
  EXPECT_THAT(contents("/logs/half.log"), MatchesRegex(line(3, "\\(unknown\\) only in the file")));
  EXPECT_THAT(output(), MatchesRegex(line(3, "\\(unknown\\) only printed")));
}

TEST_F(FamilyLogger, UsesTheCataloguesFolder) {
  const std::string folder = "/home/ada/Library/Logs/com.orvane.Vornix3";
  fakes::fileTree().addFolder(folder);
  processFiles().addFolder(folder);
  initVNXLogger();
  GTMLogger::sharedLogger()->logAssert("x");
  EXPECT_THAT(contents(folder + "/Vornix.log"), MatchesRegex(line(4, "\\(unknown\\) x")));
}

TEST_F(FamilyLogger, SetUpTwiceWritesEachLineOnce) {
  initVNXLogger("/logs/twice.log");
  GTMLogger::sharedLogger()->logError("a");
  initVNXLogger("/logs/twice.log");
  GTMLogger::sharedLogger()->logError("b");
  EXPECT_THAT(contents("/logs/twice.log"),
              MatchesRegex(line(3, "\\(unknown\\) a") + line(3, "\\(unknown\\) b")));
}

}  // namespace
}  // namespace vornix
