#include "platform/text/SecTransform.h"

#include <gtest/gtest.h>

#include <span>
#include <string_view>

namespace vornix {
namespace {

Data dataOf(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

TEST(SecTransform, EncodesItsInput) {
  const auto transform = SecEncodeTransformCreate(kSecBase64Encoding);
  ASSERT_NE(transform, nullptr);
  EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, dataOf("fooba")));
  EXPECT_EQ(transform->execute(), dataOf("Zm9vYmE="));
}

TEST(SecTransform, DecodesItsInput) {
  const auto transform = SecDecodeTransformCreate(kSecBase64Encoding);
  ASSERT_NE(transform, nullptr);
  EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, dataOf("Zm9v\nYmE")));
  EXPECT_EQ(transform->execute(), dataOf("fooba"));
}

TEST(SecTransform, MakesEmptyDataOfEmptyData) {
  for (const auto create : {SecEncodeTransformCreate, SecDecodeTransformCreate}) {
    const auto transform = create(kSecBase64Encoding);
    EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, Data()));
    EXPECT_EQ(transform->execute(), Data());
  }
}

TEST(SecTransform, AnswersNothingWithoutInput) {
  for (const auto create : {SecEncodeTransformCreate, SecDecodeTransformCreate}) {
    const auto transform = create(kSecBase64Encoding);
    EXPECT_EQ(transform->execute(), std::nullopt);
    EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, dataOf("Zg==")));
    EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, std::nullopt));
    EXPECT_EQ(transform->execute(), std::nullopt);
  }
}

TEST(SecTransform, StartsAnewWithEachInput) {
  const auto transform = SecDecodeTransformCreate(kSecBase64Encoding);
  EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, dataOf("Zm9v")));
  EXPECT_EQ(transform->execute(), dataOf("foo"));
  EXPECT_EQ(transform->execute(), dataOf("foo"));
  EXPECT_TRUE(transform->setAttribute(kSecTransformInputAttributeName, dataOf("----")));
  EXPECT_EQ(transform->execute(), Data(3));
}

TEST(SecTransform, RefusesAttributesThatItDoesNotHave) {
  const auto transform = SecEncodeTransformCreate(kSecBase64Encoding);
  EXPECT_FALSE(transform->setAttribute("LINE", dataOf("76")));
  EXPECT_EQ(transform->execute(), std::nullopt);
}

TEST(SecTransform, KnowsNoOtherEncoding) {
  EXPECT_EQ(SecEncodeTransformCreate("base32"), nullptr);
  EXPECT_EQ(SecDecodeTransformCreate(""), nullptr);
}

}  // namespace
}  // namespace vornix
