#include "foundation/NSObject+VXBindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string_view>
#include <vector>

#include "platform/base/NSDictionary.h"
#include "platform/base/NSNull.h"
#include "platform/bindings/BindingInfo.h"
#include "tests/fakes/ScopedSharedLogger.h"
#include "tests/support/Record.h"
#include "tests/support/ScopedDiagnostics.h"
#include "tests/support/Transformers.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tests::described;
using tests::number;
using tests::Record;
using tests::text;

using Object = std::shared_ptr<NSObject>;

constexpr std::string_view kForbidden =
    "WARNING: binding \"value\" has value transformer, but it doesn't allow reverse "
    "transformations in -[NSObject(VXBindings) propagateValue:forBinding:]";
constexpr std::string_view kNoObject =
    "ERROR: NSObservedObjectKey was nil for binding \"value\" in "
    "-[NSObject(VXBindings) propagateValue:forBinding:]";
constexpr std::string_view kNoKeyPath =
    "ERROR: NSObservedKeyPathKey was nil for binding \"value\" in "
    "-[NSObject(VXBindings) propagateValue:forBinding:]";

std::shared_ptr<NSDictionary> dictionary(std::initializer_list<NSDictionary::Entry> entries) {
  return std::make_shared<NSDictionary>(entries);
}

std::shared_ptr<NSDictionary> options(Object transformer, Object name = nullptr) {
  return dictionary({{std::string(NSValueTransformerBindingOption), std::move(transformer)},
                     {std::string(NSValueTransformerNameBindingOption), std::move(name)}});
}

// Says of its binding what the test wants.
class Scripted final : public NSObject {
 public:
  explicit Scripted(std::shared_ptr<NSDictionary> bindingInfo) : info(std::move(bindingInfo)) {}
  std::shared_ptr<NSDictionary> infoForBinding(std::string_view /*binding*/) override {
    return info;
  }
  std::shared_ptr<NSDictionary> info;
};

class PropagateValue : public testing::Test {
 protected:
  static std::shared_ptr<NSDictionary> info(Object observed, Object keyPath,
                                            Object bindingOptions = nullptr) {
    return dictionary({{std::string(NSObservedObjectKey), std::move(observed)},
                       {std::string(NSObservedKeyPathKey), std::move(keyPath)},
                       {std::string(NSOptionsKey), std::move(bindingOptions)}});
  }

  fakes::ScopedSharedLogger logger_;
  std::shared_ptr<Record> room_ = Record::create({{"warmth", number(20)}});
  std::shared_ptr<Record> model_ =
      Record::create({{"count", number(1)}, {"room", room_}, {"nobody", nullptr}});
  std::shared_ptr<Record> field_ = Record::create({{"value", nullptr}});
};

TEST_F(PropagateValue, WritesToTheKeyPathThatTheBindingObserves) {
  field_->bind("value", model_, "room.warmth");
  propagateValue(field_, number(25), "value");
  EXPECT_EQ(described(room_->valueForKey("warmth")), "25");
  // Which comes back through the binding.
  EXPECT_EQ(described(field_->valueForKey("value")), "25");
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PropagateValue, DoesAndLogsNothingForAnUnboundName) {
  const tests::ScopedDiagnostics diagnostics;
  field_->bind("value", model_, "count");
  propagateValue(field_, number(2), "Value");
  propagateValue(field_, number(2), "");
  propagateValue(model_, number(2), "value");
  propagateValue(nullptr, number(2), "value");
  EXPECT_EQ(model_->changes() + room_->changes(), 0);
  EXPECT_THAT(logger_.messages(), IsEmpty());
  EXPECT_THAT(diagnostics.lines(), IsEmpty());
}

TEST_F(PropagateValue, StoresTheUntransformedValueAndWarnsWhereTheTransformerAllowsNoReverse) {
  field_->bind("value", model_, "count", options(std::make_shared<tests::PresenceTransformer>()));
  propagateValue(field_, text("as it is"), "value");
  EXPECT_EQ(described(model_->valueForKey("count")), "as it is");
  EXPECT_THAT(logger_.messages(LogLevelDebug), ElementsAre(kForbidden));
}

TEST_F(PropagateValue, WritesNothingAtAllAsAValue) {
  field_->bind("value", model_, "count");
  propagateValue(field_, nullptr, "value");
  EXPECT_EQ(model_->valueForKey("count"), nullptr);
  EXPECT_EQ(model_->changes(), 1);
}

TEST_F(PropagateValue, IsLostWhereAnObjectOnTheWayIsMissing) {
  field_->bind("value", model_, "nobody.warmth");
  propagateValue(field_, number(2), "value");
  EXPECT_EQ(model_->changes() + room_->changes(), 0);
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_F(PropagateValue, ReportsAKeyThatTheObservedObjectDoesNotHave) {
  const tests::ScopedDiagnostics diagnostics;
  const auto field = std::make_shared<Scripted>(info(model_, text("room.unknown")));
  propagateValue(field, number(2), "value");
  EXPECT_THAT(diagnostics.lines(),
              ElementsAre(room_->description() + " takes no value for the key \"unknown\""));
}

// What arrives at "count" for the value 68; none for nothing.
struct InfoCase {
  std::shared_ptr<NSDictionary> info;
  std::optional<std::string> stored;
  std::vector<std::string_view> messages{};
  std::size_t complaints = 0;
};

TEST_F(PropagateValue, ReadsTheInformationOfTheBindingInItsOrder) {
  NSValueTransformer::setValueTransformer(std::make_shared<tests::FahrenheitTransformer>(),
                                          "Fahrenheit");
  NSValueTransformer::setValueTransformer(std::make_shared<tests::PresenceTransformer>(),
                                          "Presence");
  const Object null = NSNull::null();
  const Object fahrenheit = std::make_shared<tests::FahrenheitTransformer>();
  const Object presence = std::make_shared<tests::PresenceTransformer>();
  const Object count = text("count");
  const std::vector<InfoCase> cases{
      {info(model_, count), "68"},
      {info(model_, count, null), "68"},
      {info(model_, count, text("no options")), "68"},
      {info(model_, count, dictionary({})), "68"},
      {info(model_, count, options(fahrenheit)), "20"},
      {info(model_, count, options(fahrenheit, null)), "20"},
      {info(model_, count, options(fahrenheit, text("Presence"))), "20"},
      {info(model_, count, options(fahrenheit, text("unknown"))), "20"},
      {info(model_, count, options(nullptr, text("Fahrenheit"))), "20"},
      {info(model_, count, options(null, text("Fahrenheit"))), "20"},
      {info(model_, count, options(null, null)), "68"},
      {info(model_, count, options(nullptr, null)), "68"},
      {info(model_, count, options(presence)), "68", {kForbidden}},
      {info(model_, count, options(null, text("Presence"))), "68", {kForbidden}},
      {info(model_, count, options(presence, text("Fahrenheit"))), "68", {kForbidden}},
      {info(model_, count, options(nullptr, text("unknown"))), "68", {}, 1},
      {info(model_, count, options(null, text(""))), "68", {}, 1},
      {info(model_, count, options(null, number(3))), "68", {}, 1},
      {info(model_, count, options(text("Fahrenheit"))), "68", {}, 1},
      {info(nullptr, count), std::nullopt, {kNoObject}},
      {info(null, count), std::nullopt, {kNoObject}},
      {info(nullptr, nullptr), std::nullopt, {kNoObject}},
      {info(null, null, options(fahrenheit)), std::nullopt, {kNoObject}},
      {info(nullptr, count, options(presence)), std::nullopt, {kForbidden, kNoObject}},
      {info(model_, nullptr), std::nullopt, {kNoKeyPath}},
      {info(model_, null), std::nullopt, {kNoKeyPath}},
      {info(model_, null, options(presence)), std::nullopt, {kForbidden, kNoKeyPath}},
      {dictionary({}), std::nullopt, {kNoObject}},
      {nullptr, std::nullopt},
  };
  for (std::size_t index = 0; index < cases.size(); ++index) {
    const tests::ScopedDiagnostics diagnostics;
    const int before = model_->changes();
    logger_.capture().clear();
    propagateValue(std::make_shared<Scripted>(cases[index].info), number(68), "value");
    EXPECT_EQ(model_->changes() - before, cases[index].stored ? 1 : 0) << index;
    if (cases[index].stored) {
      EXPECT_EQ(described(model_->valueForKey("count")), *cases[index].stored) << index;
    }
    EXPECT_THAT(logger_.messages(LogLevelDebug), testing::ElementsAreArray(cases[index].messages))
        << index;
    EXPECT_EQ(diagnostics.lines().size(), cases[index].complaints) << index;
  }
}

TEST_F(PropagateValue, NamesTheBindingAsItIsInTheLog) {
  for (const std::string name :
       {"%@", "\xF0\x9F\x98\x80", "e\xCC\x81", "\xD7\x90", "\xE2\x80\x8B", "a\"b", ""}) {
    logger_.capture().clear();
    propagateValue(std::make_shared<Scripted>(dictionary({})), nullptr, name);
    EXPECT_THAT(logger_.messages(LogLevelDebug),
                ElementsAre("ERROR: NSObservedObjectKey was nil for binding \"" + name +
                            "\" in -[NSObject(VXBindings) propagateValue:forBinding:]"));
  }
}

TEST_F(PropagateValue, AValueThatGoesThereAndBackIsTheSame) {
  field_->bind("value", room_, "warmth", options(std::make_shared<tests::FahrenheitTransformer>()));
  for (int fahrenheit = -148; fahrenheit <= 212; fahrenheit += 18) {
    propagateValue(field_, number(fahrenheit), "value");
    EXPECT_EQ(described(room_->valueForKey("warmth")), std::to_string((fahrenheit - 32) * 5 / 9));
    EXPECT_EQ(described(field_->valueForKey("value")), std::to_string(fahrenheit));
  }
}

class OneWayTransformer final : public NSValueTransformer {
 public:
  Object transformedValue(const Object& value) override { return value; }
  Object reverseTransformedValue(const Object& /*value*/) override {
    throw std::runtime_error("no way back");
  }
};

// Refuses every value.
class Sealed final : public NSObject {
 public:
  Object valueForKey(std::string_view /*key*/) override { throw std::runtime_error("sealed"); }
  void setValueForKey(const Object& /*value*/, std::string_view /*key*/) override {
    throw std::invalid_argument("refused");
  }
};

TEST_F(PropagateValue, ReportsWhateverTheOtherEndThrowsAndWritesNothing) {
  const tests::ScopedDiagnostics diagnostics;
  const auto sealed = std::make_shared<Sealed>();
  const auto propagate = [](std::shared_ptr<NSDictionary> bindingInfo) {
    EXPECT_NO_THROW(
        propagateValue(std::make_shared<Scripted>(std::move(bindingInfo)), number(2), "value"));
  };
  propagate(info(model_, text("count"), options(std::make_shared<OneWayTransformer>())));
  propagate(info(sealed, text("count")));
  propagate(info(sealed, text("room.count")));
  EXPECT_EQ(model_->changes(), 0);
  EXPECT_THAT(diagnostics.lines(),
              ElementsAre("An exception left the other end of a binding: no way back",
                          "An exception left the other end of a binding: refused",
                          "An exception left the other end of a binding: sealed"));
}

}  // namespace
}  // namespace vornix
