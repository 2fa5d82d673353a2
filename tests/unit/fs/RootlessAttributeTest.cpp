#include "fs/RootlessAttribute.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vornix {
namespace {

using namespace std::string_view_literals;

struct Row {
  std::string_view names;
  bool isMarked;
};

constexpr Row kRows[] = {
    {"", false},
    {"\0"sv, false},
    {"\0\0\0"sv, false},
    {"com.apple.rootless\0"sv, true},
    // The last byte always counts as zero.
    {"com.apple.rootless", true},
    {"com.apple.rootlesS", true},
    {"com.apple.rootles?x", false},
    {"x", false},
    {"c", false},
    // What the mark starts with counts.
    {"c\0"sv, true},
    {"com\0"sv, true},
    {"com.apple.rootles\0"sv, true},
    {"com.apple.\0"sv, true},
    {"cx\0"sv, false},
    {"Com.apple.rootless\0"sv, false},
    // What starts with the mark does not.
    {"com.apple.rootless2\0"sv, false},
    {"com.apple.rootless.more\0"sv, false},
    {"user.com.apple.rootless\0"sv, false},
    // A name behind a shorter one is seen, and so is one behind a name that is as long.
    {"x\0com.apple.rootless\0"sv, true},
    {"com.apple.rootlesT\0com.apple.rootless\0"sv, true},
    {"com.apple.rootless2\0com.apple.rootless\0"sv, false},
    // One behind a longer name is not.
    {"com.apple.quarantine\0com.apple.rootless\0"sv, false},
    {"com.apple.quarantine\0c\0"sv, false},
    {"xy\0c\0"sv, false},
    {"x\0c\0"sv, true},
    {"xy\0com\0"sv, true},
    // More behind it makes it seen.
    {"com.apple.quarantine\0com.apple.rootless\0\0"sv, false},
    {"com.apple.quarantine\0com.apple.rootless\0x\0"sv, true},
    // An empty name ends the scan.
    {"x\0\0com.apple.rootless\0"sv, false},
    {"\0com.apple.rootless\0"sv, false},
    {"a\0b\0d\0e\0com.apple.rootless\0"sv, true},
    {"\xFF\xFE\0com\0"sv, true},
};

TEST(RootlessAttribute, IsFoundInListsOfNamesAsTheRulesOfTheScanHaveIt) {
  for (const Row& row : kRows)
    EXPECT_EQ(holdsRootlessAttribute(std::string(row.names)), row.isMarked)
        << testing::PrintToString(row.names);
}

TEST(RootlessAttribute, IsFoundAtTheEndOfTheLongestListOfShorterNames) {
  std::string names;
  for (int number = 0; number < 4000; ++number) names += "user-attribute" + std::string(1, '\0');
  EXPECT_FALSE(holdsRootlessAttribute(names));
  EXPECT_TRUE(holdsRootlessAttribute(names + "com.apple.rootless" + '\0'));
}

}  // namespace
}  // namespace vornix
