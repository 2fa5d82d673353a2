#include "logging/GTMLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "logging/GTMFileHandleLogWriter.h"
#include "logging/GTMLogFilters.h"
#include "logging/GTMLogFormatters.h"
#include "tests/fakes/FakeFileHandle.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using fakes::CapturingLogWriter;
using fakes::LoggedLine;
using fakes::ScopedSharedLogger;
using testing::ElementsAre;
using testing::IsEmpty;

class ThrowingWriter final : public GTMLogWriter {
 public:
  void logMessage(std::string_view /*message*/, LogLevel /*level*/) override {
    ++calls;
    throw std::runtime_error("the writer fails");
  }
  int calls = 0;
};

class CountingFilter final : public GTMLogFilter {
 public:
  bool filterAllowsMessage(std::string_view message, LogLevel level) override {
    if (throwing) throw std::runtime_error("the filter fails");
    seen.push_back({level, std::string(message)});
    return allowing;
  }
  bool allowing = true;
  bool throwing = false;
  std::vector<LoggedLine> seen;
};

// Says nothing for what is marked so, and fails for what is marked so.
class PickyFormatter final : public GTMLogFormatter {
 public:
  std::optional<std::string> stringForFunc(std::optional<std::string_view> function,
                                           std::optional<std::string_view> format,
                                           const text::FormatArguments* arguments,
                                           LogLevel level) override {
    if (format == "silent") return std::nullopt;
    if (format == "throw") throw std::runtime_error("the formatter fails");
    return text::format(
        "%@|%@|%d|%d",
        function ? std::optional<std::string>(*function) : std::optional<std::string>(),
        format ? std::string(*format) : "none",
        arguments != nullptr ? static_cast<int>(arguments->size()) : -1, level);
  }
};

struct Pipeline {
  std::shared_ptr<CapturingLogWriter> writer = std::make_shared<CapturingLogWriter>();
  std::shared_ptr<PickyFormatter> formatter = std::make_shared<PickyFormatter>();
  std::shared_ptr<CountingFilter> filter = std::make_shared<CountingFilter>();
  std::shared_ptr<GTMLogger> logger = GTMLogger::loggerWithWriter(writer, formatter, filter);
};

TEST(GTMLogger, WritesEveryLevelBareToStandardOutputByDefault) {
  fakes::processFiles().standardOutput->clear();
  const auto logger = GTMLogger::logger();
  logger->logDebug("debug %d", 1);
  logger->logInfo("info %@", "two");
  logger->logError("error");
  logger->logAssert("assert");
  const text::FormatArguments none;
  logger->logInternalFunc(nullptr, "unknown", &none, LogLevelUnknown);
  logger->logInternalFunc(nullptr, "beyond", &none, 99);
  EXPECT_EQ(fakes::processFiles().standardOutput->contents(),
            "debug 1\ninfo two\nerror\nassert\nunknown\nbeyond\n");
}

TEST(GTMLogger, PutsADefaultInPlaceOfEachNullPart) {
  fakes::processFiles().standardOutput->clear();
  const Pipeline pipeline;
  pipeline.logger->setWriter(nullptr);
  pipeline.logger->setFormatter(nullptr);
  pipeline.logger->setFilter(nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMFileHandleLogWriter>(pipeline.logger->writer()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogBasicFormatter>(pipeline.logger->formatter()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogNoFilter>(pipeline.logger->filter()), nullptr);
  pipeline.logger->logDebug("it works");
  EXPECT_EQ(fakes::processFiles().standardOutput->contents(), "it works\n");
  EXPECT_THAT(pipeline.writer->lines(), IsEmpty());
}

TEST(GTMLogger, AnswersThePartsThatItWasGiven) {
  const Pipeline pipeline;
  EXPECT_EQ(pipeline.logger->writer(), pipeline.writer);
  EXPECT_EQ(pipeline.logger->formatter(), pipeline.formatter);
  EXPECT_EQ(pipeline.logger->filter(), pipeline.filter);
}

TEST(GTMLogger, AsksNeitherFilterNorWriterWhenTheFormatterIsSilent) {
  const Pipeline pipeline;
  pipeline.logger->logError("silent");
  EXPECT_THAT(pipeline.filter->seen, IsEmpty());
  EXPECT_THAT(pipeline.writer->lines(), IsEmpty());
}

TEST(GTMLogger, SuppressesAMessageWithoutAFormat) {
  Pipeline pipeline;
  pipeline.logger->setFormatter(nullptr);
  pipeline.logger->logError(std::nullopt);
  pipeline.logger->logFuncError("foo", std::nullopt);
  EXPECT_THAT(pipeline.filter->seen, IsEmpty());
  EXPECT_THAT(pipeline.writer->lines(), IsEmpty());
}

TEST(GTMLogger, FiltersAfterFormatting) {
  const Pipeline pipeline;
  pipeline.filter->allowing = false;
  pipeline.logger->logDebug("x");
  EXPECT_THAT(pipeline.filter->seen, ElementsAre(LoggedLine{LogLevelDebug, "(null)|x|0|1"}));
  EXPECT_THAT(pipeline.writer->lines(), IsEmpty());
}

TEST(GTMLogger, HandsFunctionFormatArgumentsAndLevelToTheFormatter) {
  const Pipeline pipeline;
  pipeline.logger->logDebug("a %d", 1);
  pipeline.logger->logInfo("b");
  pipeline.logger->logError("c %@ %@", "x", "y");
  pipeline.logger->logAssert("d");
  pipeline.logger->logFuncDebug("f1", "e");
  pipeline.logger->logFuncInfo("f2", "f");
  pipeline.logger->logFuncError("f3", "g");
  pipeline.logger->logFuncAssert("f4", "h");
  pipeline.logger->logFuncAssert(nullptr, "i");
  EXPECT_THAT(pipeline.writer->messages(),
              ElementsAre("(null)|a %d|1|1", "(null)|b|0|2", "(null)|c %@ %@|2|3", "(null)|d|0|4",
                          "f1|e|0|1", "f2|f|0|2", "f3|g|0|3", "f4|h|0|4", "(null)|i|0|4"));
}

TEST(GTMLogger, PassesAnUnusualLevelOnUnchanged) {
  const Pipeline pipeline;
  const text::FormatArguments none;
  for (const LogLevel level : {-1, 0, 5, INT32_MIN, INT32_MAX}) {
    pipeline.logger->logInternalFunc(nullptr, "x", &none, level);
    EXPECT_EQ(pipeline.filter->seen.back().level, level);
    EXPECT_EQ(pipeline.writer->lines().back().level, level);
  }
}

TEST(GTMLogger, CountsAFunctionNameThatIsNotUtf8AsNone) {
  const Pipeline pipeline;
  pipeline.logger->logFuncError("\xFF", "x");
  EXPECT_THAT(pipeline.writer->messages(), ElementsAre("(null)|x|0|3"));
}

TEST(GTMLogger, PassesLevelsOneToFourOnAsTheWriterOfAnotherLogger) {
  const auto writer = std::make_shared<CapturingLogWriter>();
  const auto inner = GTMLogger::loggerWithWriter(writer, nullptr, nullptr);
  const auto outer = GTMLogger::loggerWithWriter(inner, nullptr, nullptr);
  const text::FormatArguments none;
  for (LogLevel level = -1; level <= 6; ++level) {
    outer->logInternalFunc(nullptr, "100%%", &none, level);
  }
  EXPECT_THAT(writer->lines(), ElementsAre(LoggedLine{1, "100%"}, LoggedLine{2, "100%"},
                                           LoggedLine{3, "100%"}, LoggedLine{4, "100%"}));
}

TEST(GTMLogger, KeepsWhatAPartThrowsFromTheCaller) {
  const Pipeline pipeline;
  const auto throwing = std::make_shared<ThrowingWriter>();
  pipeline.logger->setWriter(throwing);
  EXPECT_NO_THROW(pipeline.logger->logError("x"));
  EXPECT_EQ(throwing->calls, 1);
  EXPECT_NO_THROW(pipeline.logger->logError("throw"));
  pipeline.filter->throwing = true;
  EXPECT_NO_THROW(pipeline.logger->logError("x"));
  EXPECT_EQ(throwing->calls, 1);
}

TEST(GTMLogger, GoesOnAfterAWriterHasFailed) {
  const Pipeline pipeline;
  pipeline.logger->setWriter(std::make_shared<ThrowingWriter>());
  pipeline.logger->logError("lost");
  pipeline.logger->setWriter(pipeline.writer);
  pipeline.logger->logError("kept");
  EXPECT_EQ(pipeline.writer->lines().size(), 1U);
}

TEST(SharedLogger, IsMadeOnceAsAStandardLogger) {
  const auto logger = GTMLogger::sharedLogger();
  ASSERT_NE(logger, nullptr);
  EXPECT_EQ(logger, GTMLogger::sharedLogger());
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogStandardFormatter>(logger->formatter()), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogLevelFilter>(logger->filter()), nullptr);
}

TEST(SharedLogger, IsMadeAnewAfterItWasSetToNull) {
  const auto first = GTMLogger::sharedLogger();
  GTMLogger::setSharedLogger(nullptr);
  const auto second = GTMLogger::sharedLogger();
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_NE(std::dynamic_pointer_cast<GTMLogLevelFilter>(second->filter()), nullptr);
}

TEST(SharedLogger, StaysUsableForACallerAfterItWasReplaced) {
  const auto writer = std::make_shared<CapturingLogWriter>();
  GTMLogger::setSharedLogger(GTMLogger::loggerWithWriter(writer, nullptr, nullptr));
  const auto held = GTMLogger::sharedLogger();
  GTMLogger::setSharedLogger(GTMLogger::logger());
  held->logError("still here");
  EXPECT_THAT(writer->messages(), ElementsAre("still here"));
}

TEST(ScopedSharedLoggerTest, RecordsEveryLevelWithFunctionNames) {
  const ScopedSharedLogger shared;
  GTMLogger::sharedLogger()->logDebug("debug %d", 1);
  GTMLogger::sharedLogger()->logFuncError("remove", "cannot remove %@", "x");
  EXPECT_THAT(shared.lines(), ElementsAre(LoggedLine{LogLevelDebug, "debug 1"},
                                          LoggedLine{LogLevelError, "cannot remove x", "remove"}));
  EXPECT_TRUE(shared.contains("debug 1"));
  EXPECT_THAT(shared.messages(LogLevelError), ElementsAre("cannot remove x"));
}

}  // namespace
}  // namespace vornix
