#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "logging/GTMFileHandleLogWriter.h"
#include "logging/GTMLogASLWriter.h"
#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "logging/GTMLogger.h"
#include "platform/base/Text.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/fakes/FakeDateFormatter.h"
#include "tests/fakes/FakeFileHandle.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/fakes/FakeSystemClock.h"
#include "tests/fakes/FakeSystemLog.h"

namespace vornix {
namespace {

using testing::MatchesRegex;

constexpr const char* kVerboseKey = "GTMVerboseLogging";

class StandardLoggers : public testing::Test {
 protected:
  StandardLoggers() {
    fakes::processClock().setNow(Date::fromUnixTime(1478307245.679));
    fakes::processFiles().addFolder("/logs");
    output_->clear();
    error_->clear();
  }
  ~StandardLoggers() override {
    fakes::processInfo().variables.erase(kVerboseKey);
    fakes::processInfo().name = "program";
    fakes::dateFormattersAreMissing() = false;
    fakes::beforeDateFormatter() = nullptr;
    NSUserDefaults::standardUserDefaults()->removeObjectForKey(kVerboseKey);
    GTMLogger::setSharedLogger(nullptr);
  }

  static std::string line(int level, const std::string& rest) {
    return "2016-11-05 00:54:05.679 program\\[4711/0x[0-9a-f]+\\] \\[lvl=" + std::to_string(level) +
           "\\] " + rest + "\n";
  }
  static void logEveryLevel(GTMLogger& logger) {
    logger.logDebug("x");
    logger.logInfo("x");
    logger.logError("x");
    logger.logAssert("x");
  }

  const std::shared_ptr<fakes::FakeFileHandle> output_ = fakes::processFiles().standardOutput;
  const std::shared_ptr<fakes::FakeFileHandle> error_ = fakes::processFiles().standardError;
};

TEST_F(StandardLoggers, DropDebugMessages) {
  GTMLogger::standardLogger()->logDebug("x");
  EXPECT_EQ(output_->contents(), "");
}

TEST_F(StandardLoggers, PrintInfoMessagesOnlyWhenTheEnvironmentAsksForThem) {
  GTMLogger::standardLogger()->logInfo("x");
  EXPECT_EQ(output_->contents(), "");
  fakes::processInfo().variables[kVerboseKey] = "  yes";
  GTMLogger::standardLogger()->logInfo("x");
  EXPECT_THAT(output_->contents(), MatchesRegex(line(2, "\\(unknown\\) x")));
}

TEST_F(StandardLoggers, PrintInfoMessagesWhenTheUserDefaultAsksForThemWithoutARestart) {
  const auto logger = GTMLogger::standardLogger();
  NSUserDefaults::standardUserDefaults()->setObject(true, kVerboseKey);
  logger->logInfo("x");
  EXPECT_THAT(output_->contents(), MatchesRegex(line(2, "\\(unknown\\) x")));
  output_->clear();
  NSUserDefaults::standardUserDefaults()->removeObjectForKey(kVerboseKey);
  logger->logInfo("x");
  EXPECT_EQ(output_->contents(), "");
}

TEST_F(StandardLoggers, LetTheEnvironmentOverruleTheUserDefault) {
  fakes::processInfo().variables[kVerboseKey] = "no";
  const auto logger = GTMLogger::standardLogger();
  NSUserDefaults::standardUserDefaults()->setObject(true, kVerboseKey);
  logger->logInfo("x");
  EXPECT_EQ(output_->contents(), "");
}

TEST_F(StandardLoggers, PrintErrorsAsStandardLinesOnStandardOutput) {
  GTMLogger::standardLogger()->logError("x");
  EXPECT_THAT(output_->contents(), MatchesRegex(line(3, "\\(unknown\\) x")));
  EXPECT_EQ(error_->contents(), "");
}

TEST_F(StandardLoggers, PrintAsserts) {
  GTMLogger::standardLogger()->logAssert("x");
  EXPECT_THAT(output_->contents(), MatchesRegex(line(4, "\\(unknown\\) x")));
}

TEST_F(StandardLoggers, PrintPrettyFunctionNames) {
  const auto logger = GTMLogger::standardLogger();
  logger->logFuncError("-[Class method]", "a");
  logger->logFuncError("foo", "b");
  logger->logFuncError("  \t", "c");
  EXPECT_THAT(output_->contents(),
              MatchesRegex(line(3, "-\\[Class method\\] a") + line(3, "foo\\(\\) b") +
                           line(3, "\\(unknown\\) c")));
}

TEST_F(StandardLoggers, PrintThePlaceholderForAMissingFormat) {
  GTMLogger::standardLogger()->logError(std::nullopt);
  EXPECT_THAT(output_->contents(), MatchesRegex(line(3, "\\(unknown\\) \\(null\\)")));
}

TEST_F(StandardLoggers, CanUseStandardErrorInstead) {
  logEveryLevel(*GTMLogger::standardLoggerWithStderr());
  EXPECT_EQ(output_->contents(), "");
  EXPECT_THAT(error_->contents(),
              MatchesRegex(line(3, "\\(unknown\\) x") + line(4, "\\(unknown\\) x")));
}

TEST_F(StandardLoggers, CanSplitInfoFromErrorsBetweenOutputAndError) {
  fakes::processInfo().variables[kVerboseKey] = "1";
  logEveryLevel(*GTMLogger::standardLoggerWithStdoutAndStderr());
  EXPECT_THAT(output_->contents(), MatchesRegex(line(2, "\\(unknown\\) x")));
  EXPECT_THAT(error_->contents(),
              MatchesRegex(line(3, "\\(unknown\\) x") + line(4, "\\(unknown\\) x")));
}

TEST_F(StandardLoggers, CanAppendToAFile) {
  const auto logger = GTMLogger::standardLoggerWithPath("/logs/standard.log");
  ASSERT_NE(logger, nullptr);
  logEveryLevel(*logger);
  const auto file = fakes::processFiles().fileAtPath("/logs/standard.log");
  EXPECT_THAT(file->contents,
              MatchesRegex(line(3, "\\(unknown\\) x") + line(4, "\\(unknown\\) x")));
  EXPECT_EQ(file->mode, 0644U);
  EXPECT_EQ(output_->contents(), "");
}

TEST_F(StandardLoggers, AreNullWithoutAPathAndForAFileThatCannotBeOpened) {
  EXPECT_EQ(GTMLogger::standardLoggerWithPath(std::nullopt), nullptr);
  EXPECT_EQ(GTMLogger::standardLoggerWithPath("/nowhere/standard.log"), nullptr);
}

TEST_F(StandardLoggers, CanWriteToTheSystemsLog) {
  const auto before = fakes::processSystemLog().records().size();
  std::thread([] { logEveryLevel(*GTMLogger::standardLoggerWithASL()); }).join();
  const auto records = fakes::processSystemLog().records();
  ASSERT_EQ(records.size(), before + 2);
  EXPECT_EQ(records.at(before).message, "(unknown) x");
  EXPECT_EQ(records.at(before).priority, 3);
  EXPECT_EQ(records.at(before).facility, std::nullopt);
  EXPECT_EQ(records.at(before + 1).priority, 1);
}

TEST_F(StandardLoggers, AreMadeOfTheStatedParts) {
  const auto hasStandardParts = [](const GTMLogger& logger) {
    return std::dynamic_pointer_cast<GTMLogStandardFormatter>(logger.formatter()) != nullptr &&
           std::dynamic_pointer_cast<GTMLogLevelFilter>(logger.filter()) != nullptr;
  };
  EXPECT_TRUE(hasStandardParts(*GTMLogger::standardLogger()));
  EXPECT_TRUE(hasStandardParts(*GTMLogger::standardLoggerWithStderr()));
  EXPECT_TRUE(hasStandardParts(*GTMLogger::standardLoggerWithStdoutAndStderr()));
  EXPECT_TRUE(hasStandardParts(*GTMLogger::standardLoggerWithPath("/logs/parts.log")));
  const auto asl = GTMLogger::standardLoggerWithASL();
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogASLWriter>(asl->writer()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogASLFormatter>(asl->formatter()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogLevelFilter>(asl->filter()), nullptr);
}

TEST_F(StandardLoggers, PrintBareMessagesWithoutADateFormatterOrAProcessName) {
  fakes::dateFormattersAreMissing() = true;
  GTMLogger::standardLogger()->logError("bare");
  fakes::dateFormattersAreMissing() = false;
  fakes::processInfo().name = "";
  GTMLogger::standardLogger()->logError("%@", "again");
  EXPECT_EQ(output_->contents(), "bare\nagain\n");
}

TEST_F(StandardLoggers, LoseLinesOfABrokenStandardOutputAndGoOn) {
  const auto logger = GTMLogger::standardLogger();
  output_->failWrites(true);
  EXPECT_NO_THROW(logger->logError("lost"));
  output_->failWrites(false);
  logger->logError("kept");
  EXPECT_THAT(output_->contents(), MatchesRegex(line(3, "\\(unknown\\) kept")));
}

TEST_F(StandardLoggers, BecomeTheSharedLoggerOfAllThreadsOnlyOnce) {
  std::vector<std::shared_ptr<GTMLogger>> seen(4);
  std::vector<std::thread> threads;
  for (auto& logger : seen) {
    threads.emplace_back([&logger] {
      logger = GTMLogger::sharedLogger();
      logger->logError("x");
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& logger : seen) EXPECT_EQ(logger, seen.front());
  EXPECT_EQ(text::split(output_->contents(), "\n").size(), 5U);
}

TEST_F(StandardLoggers, TakeErrorsOfTheirOwnBuildingPlainly) {
  fakes::beforeDateFormatter() = [] {
    GTMLogger::sharedLogger()->logDebug("dropped");
    GTMLogger::sharedLogger()->logError("no dates in this language");
  };
  GTMLogger::setSharedLogger(nullptr);
  GTMLogger::sharedLogger()->logError("x");
  EXPECT_THAT(output_->contents(),
              MatchesRegex("no dates in this language\n" + line(3, "\\(unknown\\) x")));
}

TEST_F(StandardLoggers, MayBeReplacedAndReconfiguredWhileThreadsLog) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([] {
      for (int count = 0; count < 200; ++count) {
        GTMLogger::sharedLogger()->logFuncError("foo", "%d", count);
      }
    });
  }
  for (int count = 0; count < 100; ++count) {
    GTMLogger::setSharedLogger(count % 2 == 0 ? nullptr : GTMLogger::logger());
    const auto logger = GTMLogger::sharedLogger();
    logger->setFormatter(nullptr);
    logger->setFilter(nullptr);
    logger->setWriter(nullptr);
    NSUserDefaults::standardUserDefaults()->setObject(count % 3 == 0, kVerboseKey);
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(text::split(output_->contents(), "\n").size(), 601U);
}

}  // namespace
}  // namespace vornix
