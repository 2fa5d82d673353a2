#include "platform/text/CompactLengths.h"

#include <gtest/gtest.h>

#include <limits>

namespace vornix::text {
namespace {

// One byte each, so that a test can go beyond.
using Lengths = CompactLengths<std::uint8_t>;

TEST(CompactLengths, AnswerWhatWasAppended) {
  Lengths lengths;
  for (std::size_t length = 0; length <= 255; ++length) lengths.append(length);
  ASSERT_EQ(lengths.size(), 256U);
  EXPECT_TRUE(lengths.isCompact());
  for (std::size_t index = 0; index < lengths.size(); ++index) EXPECT_EQ(lengths[index], index);
}

TEST(CompactLengths, TakeALengthThatNeedsMore) {
  Lengths lengths;
  lengths.append(7);
  lengths.append(256);
  lengths.append(8);
  lengths.append(std::numeric_limits<std::size_t>::max());
  EXPECT_FALSE(lengths.isCompact());
  ASSERT_EQ(lengths.size(), 4U);
  EXPECT_EQ(lengths[0], 7U);
  EXPECT_EQ(lengths[1], 256U);
  EXPECT_EQ(lengths[2], 8U);
  EXPECT_EQ(lengths[3], std::numeric_limits<std::size_t>::max());
}

TEST(CompactLengths, MayBeReplacedByOneThatNeedsMore) {
  Lengths lengths;
  for (std::size_t length = 0; length < 3; ++length) lengths.append(length);
  lengths.replace(0, 9);
  EXPECT_TRUE(lengths.isCompact());
  lengths.replace(1, 1000);
  lengths.replace(2, 3);
  EXPECT_EQ(lengths[0], 9U);
  EXPECT_EQ(lengths[1], 1000U);
  EXPECT_EQ(lengths[2], 3U);
}

TEST(CompactLengths, MayStartWithOneThatNeedsMore) {
  Lengths lengths;
  lengths.append(256);
  EXPECT_EQ(lengths.size(), 1U);
  EXPECT_EQ(lengths[0], 256U);
}

}  // namespace
}  // namespace vornix::text
