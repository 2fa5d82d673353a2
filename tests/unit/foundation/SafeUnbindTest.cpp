#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "foundation/NSObject+VXBindings.h"
#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/support/Record.h"
#include "tests/support/ScopedDiagnostics.h"

namespace vornix {
namespace {

using testing::IsEmpty;
using tests::described;
using tests::number;
using tests::Record;

class SafeUnbind : public testing::Test {
 protected:
  fakes::ScopedSharedLogger logger_;
  std::shared_ptr<Record> model_ = Record::create({{"count", number(1)}});
  std::shared_ptr<Record> field_ = Record::create({{"value", nullptr}});
};

TEST_F(SafeUnbind, EndsABindingThatExists) {
  field_->bind("value", model_, "count");
  safeUnbind(field_, "value");
  model_->setValueForKey(number(2), "count");
  EXPECT_EQ(described(field_->valueForKey("value")), "1");
  EXPECT_EQ(field_->infoForBinding("value"), nullptr);
}

TEST_F(SafeUnbind, DoesNothingWhereThereIsNoSuchBinding) {
  const tests::ScopedDiagnostics diagnostics;
  field_->bind("value", model_, "count");
  safeUnbind(field_, "Value");
  safeUnbind(field_, "");
  safeUnbind(model_, "value");
  safeUnbind(nullptr, "value");
  EXPECT_NE(field_->infoForBinding("value"), nullptr);
  safeUnbind(field_, "value");
  safeUnbind(field_, "value");
  EXPECT_THAT(logger_.messages(), IsEmpty());
  EXPECT_THAT(diagnostics.lines(), IsEmpty());
}

TEST_F(SafeUnbind, EndsNothingButTheBindingOfExactlyThatName) {
  using namespace std::string_view_literals;
  constexpr std::array names{"value"sv,
                             "Value"sv,
                             "value "sv,
                             " value"sv,
                             "value\0"sv,
                             "\0"sv,
                             ""sv,
                             "."sv,
                             "val\u00FCe"sv,
                             "valu\u0308e"sv,
                             "\u200Bvalue"sv,
                             "\uFEFFvalue"sv,
                             "\uD55C"sv,
                             "\u1112\u1161\u11AB"sv,
                             "\u03C3"sv,
                             "\u03C2"sv,
                             "\u0130"sv,
                             "\u00DF"sv,
                             "ss"sv,
                             "\u05D0\u202E"sv,
                             "\U0001F600"sv,
                             "\xED\xA0\xBD"sv,
                             "\xFF"sv,
                             "%@"sv};
  const tests::ScopedDiagnostics diagnostics;
  for (const std::string_view bound : names) {
    const auto properties = Record::create({{std::string(bound), nullptr}});
    properties->bind(bound, model_, "count");
    for (const std::string_view other : names) {
      if (other != bound) safeUnbind(properties, other);
    }
    EXPECT_NE(properties->infoForBinding(bound), nullptr) << bound;
    safeUnbind(properties, bound);
    EXPECT_EQ(properties->infoForBinding(bound), nullptr) << bound;
    safeUnbind(properties, bound);
  }
  EXPECT_THAT(logger_.messages(), IsEmpty());
  EXPECT_THAT(diagnostics.lines(), IsEmpty());
}

}  // namespace
}  // namespace vornix
