#include <gtest/gtest.h>

#include "foundation/NSObject+Casting.h"
#include "foundation/NSObject+Equation.h"

namespace vornix {
namespace {

class Animal : public NSObject {};
class Cat final : public Animal {};

TEST(ObjectCasting, DynamicCastAnswersAnObjectOfASubclassAndNothingElse) {
  const std::shared_ptr<NSObject> cat = std::make_shared<Cat>();
  EXPECT_EQ(dynamicCastObject<Animal>(cat), cat);
  EXPECT_EQ(dynamicCastObject<Cat>(cat), cat);
  EXPECT_EQ(dynamicCastObject<NSNumber>(cat), nullptr);
  EXPECT_EQ(dynamicCastObject<Animal>(std::shared_ptr<NSObject>()), nullptr);
}

TEST(ObjectCasting, CastAnswersTheSameObject) {
  const std::shared_ptr<NSObject> cat = std::make_shared<Cat>();
  EXPECT_EQ(castObject<Animal>(cat), cat);
  EXPECT_EQ(castObject<Animal>(std::shared_ptr<NSObject>()), nullptr);
}

TEST(ObjectEquation, MissingObjectsAreEqualToEachOtherOnly) {
  const auto object = std::make_shared<NSObject>();
  EXPECT_TRUE(isEqualObject(nullptr, nullptr));
  EXPECT_FALSE(isEqualObject(nullptr, object));
  EXPECT_FALSE(isEqualObject(object, nullptr));
}

TEST(ObjectEquation, ObjectsAreAskedWhetherTheyAreEqual) {
  const auto one = std::make_shared<NSNumber>(Value(1));
  const auto alsoOne = std::make_shared<NSNumber>(Value(1.0));
  const auto text = std::make_shared<NSString>("1");
  EXPECT_TRUE(isEqualObject(one, one));
  EXPECT_TRUE(isEqualObject(one, alsoOne));
  EXPECT_FALSE(isEqualObject(one, text));
}

}  // namespace
}  // namespace vornix
