#include "logging/GTMLogFormatters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "logging/GTMLogFilters.h"
#include "tests/fakes/FakeDateFormatter.h"
#include "tests/fakes/FakeProcessInfo.h"
#include "tests/fakes/FakeSystemClock.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using testing::MatchesRegex;

std::optional<std::string> formatted(GTMLogFormatter& formatter,
                                     std::optional<std::string_view> function,
                                     std::optional<std::string_view> format,
                                     std::initializer_list<text::FormatArgument> arguments,
                                     LogLevel level) {
  const text::FormatArguments view(arguments.begin(), arguments.size());
  return formatter.stringForFunc(function, format, &view, level);
}

TEST(GTMLogBasicFormatter, AppliesTheFormatAndIgnoresFunctionAndLevel) {
  GTMLogBasicFormatter formatter;
  EXPECT_EQ(formatted(formatter, "foo", "%@ is %d", {"x", 3}, 4), "x is 3");
  EXPECT_EQ(formatted(formatter, std::nullopt, "", {}, -7), "");
}

TEST(GTMLogBasicFormatter, IsSilentWithoutFormatOrArguments) {
  GTMLogBasicFormatter formatter;
  EXPECT_EQ(formatted(formatter, "foo", std::nullopt, {}, 3), std::nullopt);
  EXPECT_EQ(formatter.stringForFunc("foo", "x", nullptr, 3), std::nullopt);
}

TEST(PrettyFunctionName, KeepsMethodsAndSignaturesAndMarksBareNames) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"foo", "foo()"},
      {"  foo\n", "foo()"},
      {"-[Class method:]", "-[Class method:]"},
      {"+[Class method]", "+[Class method]"},
      {" -[Class method]\t", "-[Class method]"},
      {"int foo(int)", "int foo(int)"},
      {"foo()", "foo()"},
      {"-foo", "-foo()"},
      {"[foo]", "[foo]()"},
      {"foo )x", "foo )x()"},
      {"", "(unknown)"},
      {" \t\r\n", "(unknown)"},
      {"\xC2\xA0", "(unknown)"}};
  for (const auto& [name, pretty] : table) {
    EXPECT_EQ(GTMLogBasicFormatter::prettyNameForFunc(name), pretty) << name;
  }
  EXPECT_EQ(GTMLogBasicFormatter::prettyNameForFunc(std::nullopt), "(unknown)");
}

class GTMLogStandardFormatterTest : public testing::Test {
 protected:
  GTMLogStandardFormatterTest() { clock_.setNow(Date::fromUnixTime(1478307245.679)); }

  [[nodiscard]] std::shared_ptr<GTMLogStandardFormatter> makeFormatter() {
    return GTMLogStandardFormatter::create(
        fakes::FakeDateFormatter::create("yyyy-MM-dd HH:mm:ss.SSS"), info_, clock_);
  }

  fakes::FakeProcessInfo info_;
  fakes::FakeSystemClock clock_;
};

TEST_F(GTMLogStandardFormatterTest, PrintsTimeProcessThreadLevelFunctionAndMessage) {
  EXPECT_THAT(*formatted(*makeFormatter(), "foo", "%@ %d", {"message", 1}, LogLevelError),
              MatchesRegex("2016-11-05 00:54:05.679 program\\[4711/0x[0-9a-f]+\\] \\[lvl=3\\] "
                           "foo\\(\\) message 1"));
}

TEST_F(GTMLogStandardFormatterTest, PrintsUnusualLevelsAndMissingNamesAsTheyAre) {
  EXPECT_THAT(*formatted(*makeFormatter(), std::nullopt, "x", {}, -5),
              MatchesRegex(".*\\[lvl=-5\\] \\(unknown\\) x"));
}

TEST_F(GTMLogStandardFormatterTest, PrintsThePlaceholderForAMissingMessage) {
  EXPECT_THAT(*formatted(*makeFormatter(), "foo", std::nullopt, {}, 3),
              MatchesRegex(".*\\[lvl=3\\] foo\\(\\) \\(null\\)"));
}

TEST_F(GTMLogStandardFormatterTest, LeavesPercentSignsOfTheMessageAlone) {
  EXPECT_THAT(*formatted(*makeFormatter(), std::nullopt, "%@", {"100% %@ %s"}, 3),
              testing::EndsWith("(unknown) 100% %@ %s"));
}

TEST_F(GTMLogStandardFormatterTest, ReadsNameAndNumberOfTheProcessOnce) {
  const auto formatter = makeFormatter();
  info_.name = "other";
  info_.pid = 1;
  EXPECT_THAT(*formatted(*formatter, "foo", "x", {}, 3), testing::HasSubstr(" program[4711/"));
}

TEST_F(GTMLogStandardFormatterTest, CannotBeMadeWithoutDateFormatterOrProcessName) {
  EXPECT_EQ(GTMLogStandardFormatter::create(nullptr, info_, clock_), nullptr);
  info_.name = "";
  EXPECT_EQ(makeFormatter(), nullptr);
}

TEST_F(GTMLogStandardFormatterTest, TellsThreadsApartByAStableValue) {
  const auto formatter = makeFormatter();
  const auto threadField = [&] {
    const auto line = *formatted(*formatter, "foo", "x", {}, 3);
    const auto start = line.find('/');
    return line.substr(start, line.find(']') - start);
  };
  const auto here = threadField();
  std::string there;
  std::thread([&] { there = threadField(); }).join();
  EXPECT_EQ(threadField(), here);
  EXPECT_NE(there, here);
}

class CountingDates final : public NSDateFormatter {
 public:
  explicit CountingDates(int& count) : count_(count) {}
  std::string stringFromDate(Date /*date*/) override { return std::to_string(++count_); }

 private:
  int& count_;
};

TEST_F(GTMLogStandardFormatterTest, IsSparedTheWorkForMessagesThatTheStandardFilterDrops) {
  int dates = 0;
  NSNotificationCenter center;
  const auto filter = std::make_shared<GTMLogLevelFilter>(
      info_, [] { return true; }, center);
  const auto formatter =
      GTMLogStandardFormatter::create(std::make_unique<CountingDates>(dates), info_, clock_);
  const auto logger =
      GTMLogger::loggerWithWriter(std::make_shared<fakes::CapturingLogWriter>(), formatter, filter);
  logger->logDebug("x");
  EXPECT_EQ(dates, 0);
  logger->logInfo("x");
  EXPECT_EQ(dates, 1);
}

class CountingFormatter final : public GTMLogBasicFormatter {
 public:
  std::optional<std::string> stringForFunc(std::optional<std::string_view> function,
                                           std::optional<std::string_view> format,
                                           const text::FormatArguments* arguments,
                                           LogLevel level) override {
    ++count;
    return GTMLogBasicFormatter::stringForFunc(function, format, arguments, level);
  }
  int count = 0;
};

TEST(GTMLogBasicFormatter, IsAskedForMessagesThatAreDroppedWhereASubclassMayDoMore) {
  const fakes::FakeProcessInfo info;
  NSNotificationCenter center;
  const auto formatter = std::make_shared<CountingFormatter>();
  GTMLogger::loggerWithWriter(nullptr, formatter,
                              std::make_shared<GTMLogLevelFilter>(
                                  info, [] { return false; }, center))
      ->logDebug("x");
  EXPECT_EQ(formatter->count, 1);
}

TEST(GTMLogASLFormatter, PrintsFunctionAndMessageAlone) {
  GTMLogASLFormatter formatter;
  EXPECT_EQ(formatted(formatter, "foo", "%@ %d", {"message", 1}, LogLevelError), "foo() message 1");
  EXPECT_EQ(formatted(formatter, std::nullopt, "x", {}, LogLevelError), "(unknown) x");
  EXPECT_EQ(formatted(formatter, "-[A b]", std::nullopt, {}, LogLevelError), "-[A b] (null)");
}

}  // namespace
}  // namespace vornix
