#include "foundation/NSString+Hashing.h"

#include <gtest/gtest.h>

namespace vornix {
namespace {

TEST(NSStringHashing, WritesTheMd5OfTheEmptyText) {
  EXPECT_EQ(md5Hash(""), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(NSStringHashing, WritesTheMd5OfTheUtf8Bytes) {
  EXPECT_EQ(md5Hash("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_NE(md5Hash("\u00E9"), md5Hash("e\u0301"));
}

}  // namespace
}  // namespace vornix
