#include "logging/GTMLogFilters.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/fakes/FakeProcessInfo.h"

namespace vornix {
namespace {

// The levels from -1 to 6 that the filter lets through.
std::vector<LogLevel> passing(GTMLogFilter& filter) {
  std::vector<LogLevel> levels;
  for (LogLevel level = -1; level <= 6; ++level) {
    if (filter.filterAllowsMessage("x", level)) levels.push_back(level);
  }
  return levels;
}

using Levels = std::vector<LogLevel>;

TEST(GTMLogNoFilter, LetsEveryLevelPass) {
  GTMLogNoFilter filter;
  EXPECT_EQ(passing(filter), (Levels{-1, 0, 1, 2, 3, 4, 5, 6}));
}

TEST(GTMLogAllowedLevelFilter, LetsTheLevelsOfItsSetPass) {
  const auto filter = GTMLogAllowedLevelFilter::createWithAllowedLevels(std::set<LogLevel>{1, 3});
  ASSERT_NE(filter, nullptr);
  EXPECT_EQ(passing(*filter), (Levels{1, 3}));
}

TEST(GTMLogAllowedLevelFilter, LetsZeroToFourPassWithoutASet) {
  EXPECT_EQ(passing(*GTMLogAllowedLevelFilter::create()), (Levels{0, 1, 2, 3, 4}));
}

TEST(GTMLogAllowedLevelFilter, IsNullForAMissingOrEmptySetOrALevelOfFiveOrMore) {
  EXPECT_EQ(GTMLogAllowedLevelFilter::createWithAllowedLevels(std::nullopt), nullptr);
  EXPECT_EQ(GTMLogAllowedLevelFilter::createWithAllowedLevels(std::set<LogLevel>{}), nullptr);
  EXPECT_EQ(GTMLogAllowedLevelFilter::createWithAllowedLevels(std::set<LogLevel>{5}), nullptr);
  EXPECT_EQ(GTMLogAllowedLevelFilter::createWithAllowedLevels(std::set<LogLevel>{0, 9}), nullptr);
  EXPECT_EQ(GTMLogAllowedLevelFilter::createWithAllowedLevels(std::set<LogLevel>{-1, 2}), nullptr);
}

TEST(GTMLogMininumLevelFilter, LetsItsLevelAndThoseAboveItPass) {
  EXPECT_EQ(passing(*GTMLogMininumLevelFilter::createWithMinimumLevel(3)), (Levels{3, 4}));
  EXPECT_EQ(passing(*GTMLogMininumLevelFilter::createWithMinimumLevel(0)), (Levels{0, 1, 2, 3, 4}));
  EXPECT_EQ(passing(*GTMLogMininumLevelFilter::createWithMinimumLevel(4)), (Levels{4}));
}

TEST(GTMLogMaximumLevelFilter, LetsItsLevelAndThoseBelowItPass) {
  EXPECT_EQ(passing(*GTMLogMaximumLevelFilter::createWithMaximumLevel(2)), (Levels{0, 1, 2}));
  EXPECT_EQ(passing(*GTMLogMaximumLevelFilter::createWithMaximumLevel(0)), (Levels{0}));
  EXPECT_EQ(passing(*GTMLogMaximumLevelFilter::createWithMaximumLevel(4)), (Levels{0, 1, 2, 3, 4}));
}

TEST(GTMLogLevelRanges, AreNullBeyondTheLevels) {
  for (const LogLevel level : {INT32_MIN, -2, -1, 5, 6, INT32_MAX}) {
    EXPECT_EQ(GTMLogMininumLevelFilter::createWithMinimumLevel(level), nullptr) << level;
    EXPECT_EQ(GTMLogMaximumLevelFilter::createWithMaximumLevel(level), nullptr) << level;
  }
}

class GTMLogLevelFilterTest : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<GTMLogLevelFilter> makeFilter() {
    return std::make_unique<GTMLogLevelFilter>(
        info_,
        [this] {
          ++lookups_;
          return verboseDefault_.load();
        },
        center_);
  }
  void defaultsChange() {
    center_.postNotification({std::string(NSUserDefaultsDidChangeNotification), nullptr, {}});
  }
  [[nodiscard]] bool isVerbose() { return makeFilter()->filterAllowsMessage("x", LogLevelInfo); }

  fakes::FakeProcessInfo info_;
  NSNotificationCenter center_;
  std::atomic<bool> verboseDefault_ = false;
  std::atomic<int> lookups_ = 0;
};

TEST_F(GTMLogLevelFilterTest, DropsDebugAlwaysAndInfoUnlessVerbose) {
  EXPECT_EQ(passing(*makeFilter()), (Levels{-1, 0, 3, 4, 5, 6}));
  verboseDefault_ = true;
  EXPECT_EQ(passing(*makeFilter()), (Levels{-1, 0, 2, 3, 4, 5, 6}));
}

TEST_F(GTMLogLevelFilterTest, IsVerboseWhenTheEnvironmentSaysYesTrueOrANumber) {
  for (const auto* text :
       {"yes", "  yes", "\t\nYES", "Y", "true", "T", "tomato", "1", "-1", " 42x", "01"}) {
    info_.variables["GTMVerboseLogging"] = text;
    EXPECT_TRUE(isVerbose()) << text;
  }
}

TEST_F(GTMLogLevelFilterTest, IsNotVerboseWhenTheEnvironmentSaysAnythingElse) {
  verboseDefault_ = true;
  for (const auto* text : {"no", "0", "false", "abc", "", "  ", "on", "00", "0x1", "N1", "+0"}) {
    info_.variables["GTMVerboseLogging"] = text;
    EXPECT_FALSE(isVerbose()) << text;
  }
  EXPECT_EQ(lookups_, 0);
}

TEST_F(GTMLogLevelFilterTest, FallsBackToTheUserDefaultWithoutTheVariable) {
  EXPECT_FALSE(isVerbose());
  verboseDefault_ = true;
  EXPECT_TRUE(isVerbose());
}

TEST_F(GTMLogLevelFilterTest, LooksAgainWheneverTheUserDefaultsChange) {
  const auto filter = makeFilter();
  verboseDefault_ = true;
  EXPECT_FALSE(filter->filterAllowsMessage("x", LogLevelInfo));
  defaultsChange();
  EXPECT_TRUE(filter->filterAllowsMessage("x", LogLevelInfo));
  verboseDefault_ = false;
  defaultsChange();
  EXPECT_FALSE(filter->filterAllowsMessage("x", LogLevelInfo));
}

TEST_F(GTMLogLevelFilterTest, ReadsTheEnvironmentAgainWhenTheUserDefaultsChange) {
  const auto filter = makeFilter();
  info_.variables["GTMVerboseLogging"] = "1";
  defaultsChange();
  EXPECT_TRUE(filter->filterAllowsMessage("x", LogLevelInfo));
}

TEST_F(GTMLogLevelFilterTest, StopsObservingWhenItEnds) {
  makeFilter().reset();
  const int before = lookups_;
  defaultsChange();
  EXPECT_EQ(lookups_, before);
}

TEST_F(GTMLogLevelFilterTest, MayBeReadAndEndWhileOtherThreadsChangeTheDefaults) {
  std::atomic<bool> stop = false;
  std::thread changer([&] {
    while (!stop) {
      verboseDefault_ = !verboseDefault_;
      defaultsChange();
    }
  });
  int passed = 0;
  for (int round = 0; round < 200; ++round) {
    const auto filter = makeFilter();
    for (int count = 0; count < 50; ++count) {
      passed += filter->filterAllowsMessage("x", LogLevelInfo) ? 1 : 0;
      EXPECT_FALSE(filter->filterAllowsMessage("x", LogLevelDebug));
    }
  }
  stop = true;
  changer.join();
  EXPECT_LE(passed, 200 * 50);
}

}  // namespace
}  // namespace vornix
