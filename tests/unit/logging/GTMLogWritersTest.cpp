#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <stdexcept>
#include <thread>

#include "logging/GTMArrayCompositeLogWriter.h"
#include "logging/GTMFileHandleLogWriter.h"
#include "logging/GTMLogger.h"
#include "platform/base/Text.h"
#include "tests/fakes/FakeFileHandle.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using fakes::CapturingLogWriter;
using fakes::FakeFileHandle;
using fakes::LoggedLine;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(GTMFileHandleLogWriter, AddsExactlyOneNewlineWhateverTheMessageEndsWith) {
  const auto handle = std::make_shared<FakeFileHandle>();
  GTMFileHandleLogWriter writer(handle);
  writer.logMessage("bare", LogLevelError);
  writer.logMessage("ended\n", LogLevelError);
  writer.logMessage("", LogLevelError);
  EXPECT_EQ(handle->contents(), "bare\nended\n\n\n");
}

TEST(GTMFileHandleLogWriter, IgnoresTheLevel) {
  const auto handle = std::make_shared<FakeFileHandle>();
  GTMFileHandleLogWriter writer(handle);
  for (const LogLevel level : {-1, 0, 1, 7}) writer.logMessage("x", level);
  EXPECT_EQ(handle->contents(), "x\nx\nx\nx\n");
}

TEST(GTMFileHandleLogWriter, WritesPercentSignsAndUtf8AsTheyAre) {
  const auto handle = std::make_shared<FakeFileHandle>();
  GTMFileHandleLogWriter(handle).logMessage("100% %@ \xC3\xA4\xF0\x9F\x98\x80", LogLevelError);
  EXPECT_EQ(handle->contents(), "100% %@ \xC3\xA4\xF0\x9F\x98\x80\n");
}

TEST(GTMFileHandleLogWriter, LosesALineThatCannotBeWrittenAndGoesOn) {
  const auto handle = std::make_shared<FakeFileHandle>();
  GTMFileHandleLogWriter writer(handle);
  handle->failWrites(true);
  EXPECT_NO_THROW(writer.logMessage("lost", LogLevelError));
  handle->failWrites(false);
  writer.logMessage("kept", LogLevelError);
  EXPECT_EQ(handle->contents(), "kept\n");
  EXPECT_NO_THROW(GTMFileHandleLogWriter(nullptr).logMessage("nowhere", LogLevelError));
}

TEST(GTMFileHandleLogWriter, OpensAFileForAppendingWithTheLowBitsOfTheMode) {
  fakes::processFiles().addFolder("/logs");
  const auto writer =
      GTMFileHandleLogWriter::fileHandleForLoggingAtPath("/logs/one.log", 0xABCD0000U | 0640);
  ASSERT_NE(writer, nullptr);
  writer->logMessage("first", LogLevelInfo);
  GTMFileHandleLogWriter::fileHandleForLoggingAtPath("/logs/one.log", 0640)
      ->logMessage("second", LogLevelInfo);
  EXPECT_EQ(fakes::processFiles().fileAtPath("/logs/one.log")->contents, "first\nsecond\n");
  EXPECT_EQ(fakes::processFiles().fileAtPath("/logs/one.log")->mode, 0640U);
}

TEST(GTMFileHandleLogWriter, IsNullWithoutAPathOrWhenTheFileCannotBeOpened) {
  EXPECT_EQ(GTMFileHandleLogWriter::fileHandleForLoggingAtPath(std::nullopt, 0644), nullptr);
  EXPECT_EQ(GTMFileHandleLogWriter::fileHandleForLoggingAtPath("/nowhere/x.log", 0644), nullptr);
}

TEST(GTMFileHandleLogWriter, NeverMixesTheLinesOfSeveralThreads) {
  const auto handle = std::make_shared<FakeFileHandle>();
  const auto logger = GTMLogger::loggerWithWriter(std::make_shared<GTMFileHandleLogWriter>(handle),
                                                  nullptr, nullptr);
  constexpr int kThreads = 4;
  constexpr int kLines = 200;
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      for (int line = 0; line < kLines; ++line) logger->logError("thread %d line %d", thread, line);
    });
  }
  for (auto& thread : threads) thread.join();
  std::vector<int> next(kThreads, 0);
  auto lines = text::split(handle->contents(), "\n");
  lines.pop_back();
  EXPECT_EQ(lines.size(), static_cast<std::size_t>(kThreads * kLines));
  for (const auto& line : lines) {
    const auto thread = static_cast<std::size_t>(text::integerValue(line.substr(7)));
    ASSERT_LT(thread, next.size());
    EXPECT_EQ(line, text::format("thread %d line %d", thread, next.at(thread)++));
  }
}

class FailingElement final : public NSObject, public GTMLogWriter {
 public:
  void logMessage(std::string_view /*message*/, LogLevel /*level*/) override {
    throw std::runtime_error("the element fails");
  }
};

TEST(GTMArrayCompositeLogWriter, WritesToEveryWriterInOrderAndSkipsOtherElements) {
  const auto handle = std::make_shared<FakeFileHandle>();
  const auto first = std::make_shared<GTMFileHandleLogWriter>(handle);
  const auto second = std::make_shared<CapturingLogWriter>();
  GTMArrayCompositeLogWriter array(
      {first, std::make_shared<NSString>("a text"), nullptr, second, first});
  array.logMessage("x", 2);
  EXPECT_EQ(handle->contents(), "x\nx\n");
  EXPECT_THAT(second->lines(), ElementsAre(LoggedLine{2, "x"}));
}

TEST(GTMArrayCompositeLogWriter, HandsUnusualLevelsToWritersAndLoggersAsTheyAre) {
  const auto direct = std::make_shared<CapturingLogWriter>();
  const auto behind = std::make_shared<CapturingLogWriter>();
  const auto logger = GTMLogger::loggerWithWriter(behind, nullptr, nullptr);
  GTMArrayCompositeLogWriter array({direct, logger});
  for (const LogLevel level : {0, 1, 4, 9}) array.logMessage("x", level);
  EXPECT_THAT(direct->lines(), ElementsAre(LoggedLine{0, "x"}, LoggedLine{1, "x"},
                                           LoggedLine{4, "x"}, LoggedLine{9, "x"}));
  EXPECT_THAT(behind->lines(), ElementsAre(LoggedLine{1, "x"}, LoggedLine{4, "x"}));
}

TEST(GTMArrayCompositeLogWriter, TakesAnArrayInAnArrayAndAnEmptyOne) {
  const auto writer = std::make_shared<CapturingLogWriter>();
  using Elements = std::vector<std::shared_ptr<NSObject>>;
  const auto inner = std::make_shared<GTMArrayCompositeLogWriter>(Elements{writer});
  const auto empty = std::make_shared<GTMArrayCompositeLogWriter>(Elements{});
  GTMArrayCompositeLogWriter({inner, empty}).logMessage("x", 3);
  EXPECT_THAT(writer->messages(), ElementsAre("x"));
}

TEST(GTMArrayCompositeLogWriter, PassesAnElementsFailureToTheLoggerWhichSwallowsIt) {
  const auto after = std::make_shared<CapturingLogWriter>();
  const auto array = std::make_shared<GTMArrayCompositeLogWriter>(
      std::vector<std::shared_ptr<NSObject>>{std::make_shared<FailingElement>(), after});
  EXPECT_THROW(array->logMessage("x", 3), std::runtime_error);
  EXPECT_NO_THROW(GTMLogger::loggerWithWriter(array, nullptr, nullptr)->logError("x"));
  EXPECT_THAT(after->lines(), IsEmpty());
}

// Logs to the array that it is an element of, once.
class ReentrantElement final : public NSObject, public GTMLogWriter {
 public:
  void logMessage(std::string_view message, LogLevel level) override {
    if (message == "outer") array->logMessage("inner", level);
  }
  GTMArrayCompositeLogWriter* array = nullptr;
};

TEST(GTMArrayCompositeLogWriter, LetsAnElementLogToTheSameArray) {
  const auto element = std::make_shared<ReentrantElement>();
  const auto writer = std::make_shared<CapturingLogWriter>();
  GTMArrayCompositeLogWriter array({element, writer});
  element->array = &array;
  array.logMessage("outer", 3);
  EXPECT_THAT(writer->messages(), ElementsAre("inner", "outer"));
}

// Counts itself without protection; the array's lock is all that keeps threads out.
class UnprotectedElement final : public NSObject, public GTMLogWriter {
 public:
  void logMessage(std::string_view /*message*/, LogLevel /*level*/) override { ++count; }
  int count = 0;
};

TEST(GTMArrayCompositeLogWriter, LetsOneMessageThroughAtATime) {
  const auto element = std::make_shared<UnprotectedElement>();
  GTMArrayCompositeLogWriter array({element});
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int count = 0; count < 1000; ++count) array.logMessage("x", 3);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(element->count, 4000);
}

}  // namespace
}  // namespace vornix
