#include "platform/base/NSDictionary.h"

#include <gtest/gtest.h>

#include "platform/base/NSNull.h"
#include "tests/support/Record.h"

namespace vornix {
namespace {

using tests::number;
using tests::text;

std::shared_ptr<NSDictionary> dictionary(std::initializer_list<NSDictionary::Entry> entries) {
  return std::make_shared<NSDictionary>(entries);
}

TEST(NSDictionary, AnswersTheObjectOfAKeyAndNothingForOthers) {
  const auto object = text("value");
  const NSDictionary filled{{"key", object}, {"key", text("later")}, {"none", nullptr}};
  EXPECT_EQ(filled.objectForKey("key"), object);
  EXPECT_EQ(filled.objectForKey("Key"), nullptr);
  EXPECT_EQ(filled.objectForKey(""), nullptr);
  EXPECT_EQ(filled.count(), 1U);
  EXPECT_EQ(NSDictionary().count(), 0U);
}

TEST(NSDictionary, RetainsItsObjects) {
  std::weak_ptr<NSObject> watched;
  {
    const NSDictionary holder = NSDictionary{{"key", [&] {
                                                const auto made = text("value");
                                                watched = made;
                                                return made;
                                              }()}};
    EXPECT_FALSE(watched.expired());
  }
  EXPECT_TRUE(watched.expired());
}

TEST(NSDictionary, IsEqualToOneWithEqualObjectsUnderTheSameKeys) {
  const auto one = dictionary({{"a", number(1)}, {"b", text("x")}});
  EXPECT_TRUE(one->isEqual(*one));
  EXPECT_TRUE(one->isEqual(*dictionary({{"b", text("x")}, {"a", number(1.0)}})));
  EXPECT_FALSE(one->isEqual(*dictionary({{"a", number(1)}})));
  EXPECT_FALSE(one->isEqual(*dictionary({{"a", number(1)}, {"c", text("x")}})));
  EXPECT_FALSE(one->isEqual(*dictionary({{"a", number(2)}, {"b", text("x")}})));
  EXPECT_FALSE(one->isEqual(*text("a")));
}

TEST(NSDictionary, PrintsItsEntriesOverSeveralLines) {
  EXPECT_EQ(NSDictionary().description(), "{\n}");
  EXPECT_EQ(dictionary({{"n", number(5)},
                        {"none", NSNull::null()},
                        {"t", text("a b")},
                        {"inner", dictionary({{"k", text("v")}})}})
                ->description(),
            "{\n    inner =     {\n        k = v;\n    };\n    n = 5;\n    none = <null>;\n"
            "    t = \"a b\";\n}");
}

TEST(NSNull, IsOneSharedObjectThatStandsForNothing) {
  EXPECT_EQ(NSNull::null(), NSNull::null());
  EXPECT_EQ(NSNull::null()->description(), "<null>");
  EXPECT_TRUE(NSNull::null()->isEqual(NSNull()));
  EXPECT_FALSE(NSNull::null()->isEqual(NSObject()));
  EXPECT_EQ(objectUnlessNull(NSNull::null()), nullptr);
  EXPECT_EQ(objectUnlessNull(nullptr), nullptr);
  const auto object = text("<null>");
  EXPECT_EQ(objectUnlessNull(object), object);
}

}  // namespace
}  // namespace vornix
