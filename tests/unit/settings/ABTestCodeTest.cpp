#include "settings/ABTestCode.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "tests/unit/settings/ABTesterFixture.h"

namespace vornix::tests {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

class ABTestCodeTest : public ABTesterFixture {};

TEST_F(ABTestCodeTest, IsScannedAsThePlatformsScannerDoes) {
  const std::pair<std::string_view, Cases> cases[] = {
      {"1A3C", {{1, 0}, {3, 2}}},
      {"A1", {{1, -1}}},
      {" 1 A 2", {{1, -1}, {2, -1}}},
      {"1", {{1, -1}}},
      {"12 B", {{12, 1}}},
      {"1A 3C", {{1, -1}, {3, 2}}},
      {"1A\n", {{1, -1}}},
      {"1 ", {{1, -1}}},
      {"", {}},
      {" \t\n", {}},
      {"\u00a0\u200b", {}},
      {"-1A", {{-1, 0}}},
      {"-1A-2B", {{-1, -1}, {2, 1}}},
      {"1-3", {{1, -1}, {3, -1}}},
      {"01A", {{1, 0}}},
      {"+5B", {{5, 1}}},
      {"9223372036854775806D", {{kLargest - 1, 3}}},
      {"9223372036854775807A", {}},
      {"9223372036854775808A", {}},
      {"99999999999999999999999A", {}},
      {"-9223372036854775808A", {{kSmallest, 0}}},
      {"-9223372036854775809A", {{kSmallest, 0}}},
      {"1.5A", {{1, -1}, {5, 0}}},
      {"0x1A", {{0, -1}, {1, 0}}},
      {"1\u00a0A", {{1, 0}}},
      {"1A1B", {{1, 1}}},
  };
  for (const auto& [code, expected] : cases) {
    store(code);
    EXPECT_EQ(tester()->currentCases(), expected) << '"' << code << '"';
  }
}

TEST_F(ABTestCodeTest, EndsAtADigitOfAnotherScriptInsteadOfTurningForever) {
  const std::pair<std::string_view, Cases> cases[] = {
      {"\u0663", {}},  {"1A\u06632B", {{1, 0}}},   {"1\u0663A", {{1, -1}}},
      {"\uff11A", {}}, {"1A\U0001D7CE", {{1, 0}}}, {"A\u0663", {}},
  };
  for (const auto& [code, expected] : cases) {
    store(code);
    EXPECT_EQ(tester()->currentCases(), expected) << '"' << code << '"';
  }
}

TEST_F(ABTestCodeTest, TakesAnyBytes) {
  EXPECT_TRUE(parseABTestCode("\xff\xfe\xc3").empty());
  EXPECT_EQ(parseABTestCode("1\xff").size(), 1U);
  EXPECT_EQ(parseABTestCode(std::string_view("1A\0"
                                             "2B",
                                             5))
                .size(),
            2U);
}

}  // namespace
}  // namespace vornix::tests
