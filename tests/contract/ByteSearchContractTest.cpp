#include "platform/text/ByteSearch.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/RandomText.h"

namespace vornix::text {
namespace {

using namespace std::string_view_literals;

TEST(ByteSearch, FindsWhatTheStandardSearchFinds) {
  constexpr std::array pieces{"a"sv, "b"sv, "ab"sv, "\0"sv, "\xFF"sv};
  tests::RandomText random(pieces);
  for (int round = 0; round < 5000; ++round) {
    const std::string bytes = random.next(12);
    const std::string pattern = random.next(4);
    ASSERT_EQ(findBytes(bytes, pattern), bytes.find(pattern)) << pattern << " in " << bytes;
  }
}

TEST(ByteSearch, FindsTheEmptyPatternAtTheStart) {
  EXPECT_EQ(findBytes("", ""), 0U);
  EXPECT_EQ(findBytes({}, {}), 0U);
  EXPECT_EQ(findBytes({}, "a"), std::string_view::npos);
}

TEST(ByteSearch, StaysLinearWhereAlmostEveryPlaceMatches) {
  const std::string letters(2'000'000, 'a');
  EXPECT_EQ(findBytes(letters, std::string(1'000'000, 'a') + "b"), std::string_view::npos);
}

}  // namespace
}  // namespace vornix::text
