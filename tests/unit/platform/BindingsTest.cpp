#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/NSNull.h"
#include "tests/support/Transformers.h"
#include "tests/unit/platform/BindingsFixture.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using tests::Bindings;
using tests::Control;
using tests::described;
using tests::number;
using tests::option;
using tests::Record;
using tests::text;

TEST_F(Bindings, SetTheBoundKeyAtOnceAndAtEveryChange) {
  control_->bind("value", model_, "count");
  EXPECT_THAT(control_->values, ElementsAre("value=1"));
  set("count", 2);
  set("count", 2);
  set("room.warmth", 21);
  EXPECT_THAT(control_->values, ElementsAre("value=1", "value=2", "value=2"));
}

TEST_F(Bindings, FollowAKeyPathToItsLastObject) {
  control_->bind("value", model_, "room.warmth");
  set("room.warmth", 21);
  set("count", 5);
  EXPECT_THAT(control_->values, ElementsAre("value=20", "value=21"));
}

TEST_F(Bindings, FollowTheObjectThatReplacesOneOnTheWay) {
  control_->bind("value", model_, "room.warmth");
  const auto newRoom = Record::create({{"warmth", number(15)}});
  model_->setValueForKey(newRoom, "room");
  room_->setValueForKey(number(30), "warmth");
  newRoom->setValueForKey(number(16), "warmth");
  EXPECT_THAT(control_->values, ElementsAre("value=20", "value=15", "value=16"));
}

TEST_F(Bindings, FollowAnObjectThatAppearsOnTheWayAndVanishesAgain) {
  control_->bind("value", model_, "other.neighbour.warmth");
  const auto far = Record::create({{"warmth", number(5)}});
  model_->setValueForKey(room_, "other");
  room_->setValueForKey(far, "neighbour");
  far->setValueForKey(number(6), "warmth");
  model_->setValueForKey(nullptr, "other");
  far->setValueForKey(number(7), "warmth");
  EXPECT_THAT(control_->values,
              ElementsAre("value=(null)", "value=(null)", "value=5", "value=6", "value=(null)"));
}

TEST_F(Bindings, FollowAnObjectThatStandsTwiceOnTheWay) {
  room_->setValueForKey(room_, "neighbour");
  control_->bind("value", room_, "neighbour.neighbour.warmth");
  room_->setValueForKey(number(21), "warmth");
  const auto other = Record::create({{"warmth", number(1)}, {"neighbour", nullptr}});
  other->setValueForKey(other, "neighbour");
  room_->setValueForKey(other, "neighbour");
  EXPECT_THAT(control_->values, ElementsAre("value=20", "value=21", "value=1"));
  other->setValueForKey(nullptr, "neighbour");
}

TEST_F(Bindings, PassTheValueThroughTheTransformerOfTheOptions) {
  const auto fahrenheit = std::make_shared<tests::FahrenheitTransformer>();
  NSValueTransformer::setValueTransformer(std::make_shared<tests::NegationTransformer>(),
                                          "Negation");
  control_->bind("value", room_, "warmth", option(NSValueTransformerBindingOption, fahrenheit));
  control_->bind("enabled", model_, "count",
                 option(NSValueTransformerNameBindingOption, text("Negation")));
  room_->setValueForKey(number(100), "warmth");
  set("count", 0);
  EXPECT_THAT(control_->values, ElementsAre("value=68", "enabled=0", "value=212", "enabled=1"));
}

TEST_F(Bindings, PassTheValueAsItIsWhereTheTransformerIsUnknown) {
  control_->bind("value", model_, "count",
                 option(NSValueTransformerNameBindingOption, text("nobody's")));
  EXPECT_THAT(control_->values, ElementsAre("value=1"));
  EXPECT_THAT(diagnostics_.lines(),
              ElementsAre("There is no value transformer of the name \"nobody's\""));
}

TEST_F(Bindings, TellWhatIsBound) {
  const auto options = option(NSValueTransformerBindingOption, NSNull::null());
  control_->bind("value", model_, "room.warmth", options);
  const auto info = control_->infoForBinding("value");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->objectForKey(NSObservedObjectKey), model_);
  EXPECT_EQ(described(info->objectForKey(NSObservedKeyPathKey)), "room.warmth");
  EXPECT_EQ(info->objectForKey(NSOptionsKey), options);
  EXPECT_EQ(control_->infoForBinding("Value"), nullptr);
  EXPECT_EQ(model_->infoForBinding("value"), nullptr);
}

TEST_F(Bindings, TellNoOptionsWhereThereAreNone) {
  control_->bind("value", model_, "count");
  EXPECT_EQ(control_->infoForBinding("value")->objectForKey(NSOptionsKey), nullptr);
}

TEST_F(Bindings, EndWithUnbind) {
  control_->bind("value", model_, "count");
  control_->bind("other", model_, "count");
  control_->unbind("value");
  control_->unbind("value");
  control_->unbind("never bound");
  model_->unbind("value");
  set("count", 2);
  EXPECT_THAT(control_->values, ElementsAre("value=1", "other=1", "other=2"));
  EXPECT_EQ(control_->infoForBinding("value"), nullptr);
  EXPECT_NE(control_->infoForBinding("other"), nullptr);
}

TEST_F(Bindings, AreReplacedByALaterOneOfTheSameName) {
  control_->bind("value", model_, "count");
  control_->bind("value", room_, "warmth");
  set("count", 2);
  room_->setValueForKey(number(21), "warmth");
  EXPECT_THAT(control_->values, ElementsAre("value=1", "value=20", "value=21"));
  EXPECT_EQ(control_->infoForBinding("value")->objectForKey(NSObservedObjectKey), room_);
}

TEST_F(Bindings, RetainTheObservedObjectUntilTheyEnd) {
  const std::weak_ptr<Record> model = model_;
  control_->bind("value", model_, "room.warmth");
  model_.reset();
  EXPECT_FALSE(model.expired());
  room_->setValueForKey(number(21), "warmth");
  EXPECT_THAT(control_->values, ElementsAre("value=20", "value=21"));
  control_->unbind("value");
  EXPECT_TRUE(model.expired());
}

TEST_F(Bindings, EndWithTheBoundObjectAndLetGoOfTheOther) {
  const std::weak_ptr<Record> model = model_;
  const std::weak_ptr<Control> control = control_;
  control_->bind("value", model_, "count");
  control_.reset();
  EXPECT_TRUE(control.expired());
  set("count", 2);
  model_.reset();
  EXPECT_TRUE(model.expired());
}

TEST_F(Bindings, RetainNoObjectOnTheWay) {
  const std::weak_ptr<Record> room = room_;
  control_->bind("value", model_, "room.warmth");
  room_.reset();
  model_->setValueForKey(nullptr, "room");
  EXPECT_TRUE(room.expired());
}

TEST_F(Bindings, ToTheObjectItselfDoNotKeepItAlive) {
  const auto self = Record::create({{"from", number(1)}, {"to", nullptr}});
  self->bind("to", self, "from");
  self->setValueForKey(number(2), "from");
  EXPECT_EQ(described(self->valueForKey("to")), "2");
  EXPECT_EQ(self->infoForBinding("to")->objectForKey(NSObservedObjectKey), self);
  EXPECT_EQ(self.use_count(), 1);
}

TEST_F(Bindings, WithoutAnObjectAtEitherEndAreReportedAndNotMade) {
  control_->bind("value", model_, "count");
  control_->bind("value", nullptr, "count");
  Control unshared;
  unshared.bind("value", model_, "count");
  EXPECT_THAT(diagnostics_.lines(),
              ElementsAre(HasSubstr("the other end"), HasSubstr("its own end")));
  EXPECT_TRUE(unshared.values.empty());
  EXPECT_EQ(unshared.infoForBinding("value"), nullptr);
  // What was bound before stays.
  set("count", 2);
  EXPECT_THAT(control_->values, ElementsAre("value=1", "value=2"));
}

struct UnknownCase {
  std::string_view keyPath;
  std::size_t complaints;
};

TEST_F(Bindings, ToAPathThatLeadsNowhereReportEachUnknownKeyAndSetNothing) {
  const std::vector<UnknownCase> cases{{"unknown", 1},
                                       {"unknown.warmth", 1},
                                       {"room.unknown", 1},
                                       {"room.unknown.more", 1},
                                       {"count.warmth", 1},
                                       {"", 1},
                                       {".", 1},
                                       {"room.", 1},
                                       {".count", 1},
                                       {"other", 0},
                                       {"other.warmth", 0},
                                       {"room.neighbour.warmth", 0},
                                       {"Room.warmth", 1},
                                       {"count ", 1},
                                       {"co\xE2\x80\x8Bunt", 1},
                                       {"\xEF\xBB\xBF"
                                        "count",
                                        1},
                                       {{"count\0", 6}, 1},
                                       {"\xED\xA0\x80", 1},
                                       {"\xFF", 1},
                                       {"@count", 1}};
  for (const auto& [keyPath, complaints] : cases) {
    const tests::ScopedDiagnostics diagnostics;
    const auto control = std::make_shared<Control>();
    control->bind("value", model_, keyPath);
    EXPECT_THAT(control->values, ElementsAre("value=(null)")) << keyPath;
    EXPECT_EQ(diagnostics.lines().size(), complaints) << keyPath;
  }
}

TEST_F(Bindings, CostAnObjectNothingBeforeTheFirst) {
  // One pointer pair for itself, one for whatever is attached to it, and the table of operations.
  EXPECT_EQ(sizeof(NSObject), 5 * sizeof(void*));
}

}  // namespace
}  // namespace vornix
