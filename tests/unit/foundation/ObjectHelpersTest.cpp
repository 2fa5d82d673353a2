#include <gtest/gtest.h>

#include <vector>

#include "foundation/NSObject+Casting.h"
#include "foundation/NSObject+Equation.h"
#include "foundation/VXBoolConditionalLock.h"
#include "platform/base/NSDictionary.h"
#include "platform/base/NSNull.h"
#include "tests/support/Record.h"

namespace vornix {
namespace {

using tests::number;
using tests::text;

using Object = std::shared_ptr<NSObject>;

class Animal : public NSObject {};
class Cat : public Animal {};
class Kitten final : public Cat {};

enum Class : unsigned {
  IsAnimal = 1,
  IsCat = 2,
  IsKitten = 4,
  IsNumber = 8,
  IsString = 16,
  IsLock = 32
};

struct CastCase {
  Object object;
  unsigned classes;
};

std::vector<CastCase> castCases() {
  return {{nullptr, 0},
          {std::make_shared<NSObject>(), 0},
          {std::make_shared<Animal>(), IsAnimal},
          {std::make_shared<Cat>(), IsAnimal | IsCat},
          {std::make_shared<Kitten>(), IsAnimal | IsCat | IsKitten},
          {number(true), IsNumber},
          {number(0), IsNumber},
          {number(-1.5), IsNumber},
          {number("12"), IsNumber},
          {text(""), IsString},
          {text("12"), IsString},
          {text("NSNumber"), IsString},
          {text("\xF0\x9F\x98\x80"), IsString},
          {text("e\xCC\x81"), IsString},
          {text("\xFF"), IsString},
          {text(std::string_view("\0", 1)), IsString},
          {NSNull::null(), 0},
          {std::make_shared<NSDictionary>(), 0},
          {VXConditionalLock::create(), IsLock},
          {VXBoolConditionalLock::create(), IsLock},
          {tests::Record::create({}), 0}};
}

template <typename T>
void expectCast(const CastCase& tried, unsigned bit, std::size_t index) {
  const std::shared_ptr<T> cast = dynamicCastObject<T>(tried.object);
  if ((tried.classes & bit) != 0) {
    EXPECT_EQ(cast, tried.object) << index;
  } else {
    EXPECT_EQ(cast, nullptr) << index;
  }
}

TEST(ObjectCasting, DynamicCastAnswersAnObjectOfTheClassOrASubclassAndNothingElse) {
  const auto cases = castCases();
  for (std::size_t index = 0; index < cases.size(); ++index) {
    EXPECT_EQ(dynamicCastObject<NSObject>(cases[index].object), cases[index].object) << index;
    expectCast<Animal>(cases[index], IsAnimal, index);
    expectCast<Cat>(cases[index], IsCat, index);
    expectCast<Kitten>(cases[index], IsKitten, index);
    expectCast<NSNumber>(cases[index], IsNumber, index);
    expectCast<NSString>(cases[index], IsString, index);
    expectCast<VXConditionalLock>(cases[index], IsLock, index);
  }
}

TEST(ObjectCasting, DynamicCastOfASubclassInstanceAnswersItAndOfAnUnrelatedObjectNothing) {
  const Object kitten = std::make_shared<Kitten>();
  EXPECT_EQ(dynamicCastObject<Cat>(kitten), kitten);
  EXPECT_EQ(dynamicCastObject<NSNumber>(kitten), nullptr);
}

TEST(ObjectCasting, CastAnswersTheSameObject) {
  for (const auto& [object, classes] : castCases()) {
    EXPECT_EQ(castObject<NSObject>(object), object);
    if ((classes & IsAnimal) != 0) {
      EXPECT_EQ(castObject<Animal>(object), object);
    }
    if ((classes & IsNumber) != 0) {
      EXPECT_EQ(castObject<NSNumber>(object), object);
    }
    if ((classes & IsString) != 0) {
      EXPECT_EQ(castObject<NSString>(object), object);
    }
  }
  EXPECT_EQ(castObject<Animal>(Object()), nullptr);
}

TEST(ObjectCasting, ACastSharesTheObjectWithItsOtherHolders) {
  Object kitten = std::make_shared<Kitten>();
  const std::weak_ptr<NSObject> watched = kitten;
  auto cat = dynamicCastObject<Cat>(kitten);
  kitten.reset();
  EXPECT_FALSE(watched.expired());
  cat = castObject<Cat>(std::move(cat));
  EXPECT_FALSE(watched.expired());
  cat.reset();
  EXPECT_TRUE(watched.expired());
}

TEST(ObjectEquation, NothingAndNothingAreEqual) {
  EXPECT_TRUE(isEqualObject(nullptr, nullptr));
}

TEST(ObjectEquation, NothingAndAnObjectAreNotEqual) {
  EXPECT_FALSE(isEqualObject(nullptr, std::make_shared<NSObject>()));
  EXPECT_FALSE(isEqualObject(std::make_shared<NSObject>(), nullptr));
  EXPECT_FALSE(isEqualObject(nullptr, NSNull::null()));
}

TEST(ObjectEquation, TwoObjectsAreAskedWhetherTheyAreEqual) {
  const Object plain = std::make_shared<NSObject>();
  const Object nan = number(std::numeric_limits<double>::quiet_NaN());
  struct Case {
    Object left;
    Object right;
    bool areEqual;
  };
  const std::vector<Case> cases{
      {plain, plain, true},
      {plain, std::make_shared<NSObject>(), false},
      {number(1), number(1), true},
      {number(1), number(1.0), true},
      {number(true), number(1), true},
      {number(1), number(2), false},
      {number(0.5), number(0), false},
      {number(0.0), number(-0.0), true},
      // The same object is equal to itself whatever it says.
      {nan, nan, true},
      {nan, number(std::numeric_limits<double>::quiet_NaN()), false},
      {number(1), text("1"), false},
      {text("1"), number(1), false},
      {text(""), text(""), true},
      {text("abc"), text("abc"), true},
      {text("abc"), text("ABC"), false},
      {text("\xC3\xA9"), text("e\xCC\x81"), false},
      {text("\xED\x95\x9C"), text("\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB"), false},
      {text("\xCF\x82"), text("\xCF\x83"), false},
      {text("\xC4\xB0"), text("i"), false},
      {text("\xC3\x9F"), text("ss"), false},
      {text("a"), text("a\xE2\x80\x8B"), false},
      {text("a"),
       text("\xEF\xBB\xBF"
            "a"),
       false},
      {text(std::string_view("a\0b", 3)), text(std::string_view("a\0c", 3)), false},
      {text("\xFF"), text("\xFF"), true},
      {text("\xED\xA0\x80"), text("\xED\xA0\x81"), false},
      {NSNull::null(), NSNull::null(), true},
      {NSNull::null(), text("<null>"), false},
      {text(std::string(1'000'000, 'x')), text(std::string(1'000'000, 'x')), true}};
  for (std::size_t index = 0; index < cases.size(); ++index) {
    EXPECT_EQ(isEqualObject(cases[index].left, cases[index].right), cases[index].areEqual) << index;
    EXPECT_EQ(isEqualObject(cases[index].right, cases[index].left), cases[index].areEqual) << index;
  }
}

class Asked final : public NSObject {
 public:
  bool isEqual(const NSObject& /*other*/) const override {
    ++questions;
    return true;
  }
  mutable int questions = 0;
};

TEST(ObjectEquation, OnlyTheFirstOfTwoDifferentObjectsIsAsked) {
  const auto first = std::make_shared<Asked>();
  const auto second = std::make_shared<Asked>();
  EXPECT_TRUE(isEqualObject(first, second));
  EXPECT_TRUE(isEqualObject(first, first));
  EXPECT_FALSE(isEqualObject(first, nullptr));
  EXPECT_EQ(first->questions, 1);
  EXPECT_EQ(second->questions, 0);
}

}  // namespace
}  // namespace vornix
