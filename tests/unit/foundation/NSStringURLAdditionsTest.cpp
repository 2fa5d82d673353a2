#include "foundation/NSString+URLAdditions.h"

#include <gtest/gtest.h>

namespace vornix {
namespace {

TEST(NSStringURLAdditions, EscapesAmpersandsBesidesWhatMayNotStandInAUrl) {
  EXPECT_EQ(vnx_stringEncodedAsURL("Tom & Jerry"), "Tom%20%26%20Jerry");
  EXPECT_EQ(vnx_stringEncodedAsURL("&&"), "%26%26");
}

TEST(NSStringURLAdditions, LeavesOtherReservedCharacters) {
  EXPECT_EQ(vnx_stringEncodedAsURL("a=b+c/d?e"), "a=b+c/d?e");
}

TEST(NSStringURLAdditions, EscapesAnExistingEscapeOnceMore) {
  EXPECT_EQ(vnx_stringEncodedAsURL("%26"), "%2526");
}

TEST(NSStringURLAdditions, AnswersNothingForALoneSurrogate) {
  EXPECT_EQ(vnx_stringEncodedAsURL("a&\xED\xB0\x80"), std::nullopt);
}

}  // namespace
}  // namespace vornix
