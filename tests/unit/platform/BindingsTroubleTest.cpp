#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/unit/platform/BindingsFixture.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tests::Bindings;
using tests::Control;
using tests::described;
using tests::number;
using tests::option;
using tests::Record;

TEST_F(Bindings, OfTwoObjectsToEachOtherComeToRest) {
  const auto left = Record::create({{"value", number(1)}});
  const auto right = Record::create({{"value", number(2)}});
  left->bind("value", right, "value");
  right->bind("value", left, "value");
  for (const auto& [changed, other] : {std::pair(left, right), std::pair(right, left)}) {
    changed->setValueForKey(number(changed->changes() + 10), "value");
    EXPECT_EQ(described(left->valueForKey("value")), described(right->valueForKey("value")));
  }
  EXPECT_THAT(diagnostics_.lines(), IsEmpty());
  left->unbind("value");
}

class Increment final : public NSValueTransformer {
 public:
  std::shared_ptr<NSObject> transformedValue(const std::shared_ptr<NSObject>& value) override {
    return number(dynamic_cast<NSNumber&>(*value).integerValue() + 1);
  }
};

TEST_F(Bindings, ThatChangeEachOtherWithoutEndAreStoppedAndReported) {
  const auto left = Record::create({{"value", number(1)}});
  const auto right = Record::create({{"value", number(1)}});
  left->bind("value", right, "value",
             option(NSValueTransformerBindingOption, std::make_shared<Increment>()));
  right->bind("value", left, "value");
  right->setValueForKey(number(5), "value");
  EXPECT_THAT(diagnostics_.lines(), testing::Contains(HasSubstr("without end")));
  left->unbind("value");
}

TEST_F(Bindings, ApplyAChangeThatTheirSetterMadeAfterwards) {
  control_->onSet = [&] {
    if (control_->values.size() == 2) set("count", 10);
  };
  control_->bind("value", model_, "count");
  set("count", 11);
  EXPECT_THAT(control_->values, ElementsAre("value=1", "value=11", "value=10"));
}

TEST_F(Bindings, MayBeEndedByTheirOwnSetter) {
  control_->onSet = [&] {
    control_->unbind("value");
    set("count", 3);
  };
  control_->bind("value", model_, "count");
  set("count", 4);
  EXPECT_THAT(control_->values, ElementsAre("value=1"));
  EXPECT_EQ(control_->infoForBinding("value"), nullptr);
}

TEST_F(Bindings, MayBeReplacedByTheirOwnSetter) {
  control_->onSet = [&] {
    control_->onSet = nullptr;
    control_->bind("value", room_, "warmth");
  };
  control_->bind("value", model_, "count");
  set("count", 4);
  room_->setValueForKey(number(21), "warmth");
  EXPECT_THAT(control_->values, ElementsAre("value=1", "value=20", "value=21"));
}

TEST_F(Bindings, OutliveASetterThatLetsGoOfTheBoundObject) {
  Control& control = *control_;
  const std::weak_ptr<Control> watched = control_;
  control.bind("value", model_, "count");
  control.onSet = [&] { control_.reset(); };
  set("count", 2);
  EXPECT_TRUE(watched.expired());
  set("count", 3);
}

TEST_F(Bindings, ReportAnExceptionOfTheSetterAndGoOn) {
  control_->onSet = [&] {
    if (control_->values.size() == 2) throw std::invalid_argument("too warm");
  };
  control_->bind("value", model_, "count");
  set("count", 2);
  set("count", 3);
  EXPECT_THAT(control_->values, ElementsAre("value=1", "value=2", "value=3"));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre("An exception left a bound setter: too warm"));
}

// Its value is read and set by functions that may throw.
class Sensor final : public NSObject {
 public:
  std::shared_ptr<NSObject> valueForKey(std::string_view /*key*/) override {
    if (isBroken) throw std::runtime_error("no reading");
    return reading;
  }

  std::shared_ptr<NSObject> reading = number(20);
  bool isBroken = false;
};

TEST_F(Bindings, TakeAValueThatCannotBeReadAsMissingAndReportIt) {
  const auto sensor = std::make_shared<Sensor>();
  sensor->isBroken = true;
  control_->bind("value", sensor, "reading");
  EXPECT_THAT(control_->values, ElementsAre("value=(null)"));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre("An exception left a bound getter: no reading"));
  EXPECT_NE(control_->infoForBinding("value"), nullptr);
  sensor->isBroken = false;
  sensor->didChangeValueForKey("reading");
  EXPECT_THAT(control_->values, ElementsAre("value=(null)", "value=20"));
}

TEST_F(Bindings, ThatCannotBeReadHoldUpNoOtherObserver) {
  const auto sensor = std::make_shared<Sensor>();
  const auto second = std::make_shared<Control>();
  control_->bind("value", sensor, "reading");
  second->bind("value", sensor, "reading");
  sensor->isBroken = true;
  EXPECT_NO_THROW(sensor->didChangeValueForKey("reading"));
  EXPECT_THAT(control_->values, ElementsAre("value=20", "value=(null)"));
  EXPECT_THAT(second->values, ElementsAre("value=20", "value=(null)"));
  EXPECT_EQ(diagnostics_.lines().size(), 2U);
}

TEST_F(Bindings, LetGoOfTheObjectsBehindAValueThatCannotBeRead) {
  const auto sensor = std::make_shared<Sensor>();
  sensor->reading = room_;
  control_->bind("value", sensor, "reading.warmth");
  sensor->isBroken = true;
  sensor->didChangeValueForKey("reading");
  room_->setValueForKey(number(21), "warmth");
  EXPECT_THAT(control_->values, ElementsAre("value=20", "value=(null)"));
}

class BrokenTransformer final : public NSValueTransformer {
 public:
  std::shared_ptr<NSObject> transformedValue(const std::shared_ptr<NSObject>&) override {
    throw std::runtime_error("no scale");
  }
};

TEST_F(Bindings, ReportAnExceptionOfTheTransformerAndTellTheOthers) {
  const auto second = std::make_shared<Control>();
  EXPECT_NO_THROW(control_->bind(
      "value", model_, "count",
      option(NSValueTransformerBindingOption, std::make_shared<BrokenTransformer>())));
  second->bind("value", model_, "count");
  EXPECT_NO_THROW(set("count", 2));
  EXPECT_TRUE(control_->values.empty());
  EXPECT_THAT(second->values, ElementsAre("value=1", "value=2"));
  EXPECT_THAT(diagnostics_.lines(), ElementsAre("An exception left a bound setter: no scale",
                                                "An exception left a bound setter: no scale"));
}

}  // namespace
}  // namespace vornix
