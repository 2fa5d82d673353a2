#include "platform/bindings/NSValueTransformer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/base/NSNull.h"
#include "platform/bindings/BindingInfo.h"
#include "tests/support/ScopedDiagnostics.h"
#include "tests/support/Transformers.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tests::described;
using tests::number;
using tests::text;

TEST(NSValueTransformer, GoesBackAsItGoesThereUnlessTheClassKnowsBetter) {
  tests::NegationTransformer negation;
  EXPECT_TRUE(negation.allowsReverseTransformation());
  EXPECT_EQ(described(negation.reverseTransformedValue(number(true))), "0");
  EXPECT_EQ(described(tests::FahrenheitTransformer().reverseTransformedValue(number(68))), "20");
}

TEST(NSValueTransformer, AWayBackThatTheClassForbidsGivesNothingAndIsReported) {
  const tests::ScopedDiagnostics diagnostics;
  tests::PresenceTransformer presence;
  EXPECT_EQ(presence.reverseTransformedValue(number(true)), nullptr);
  EXPECT_THAT(diagnostics.lines(),
              ElementsAre(presence.description() + " allows no reverse transformation"));
}

TEST(NSValueTransformer, IsFoundUnderTheNameItWasRegisteredWith) {
  const auto negation = std::make_shared<tests::NegationTransformer>();
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Negation"), nullptr);
  NSValueTransformer::setValueTransformer(negation, "Negation");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Negation"), negation);
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("negation"), nullptr);
  const auto other = std::make_shared<tests::PresenceTransformer>();
  NSValueTransformer::setValueTransformer(other, "Negation");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Negation"), other);
  NSValueTransformer::setValueTransformer(nullptr, "Negation");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Negation"), nullptr);
}

TEST(NSValueTransformer, MayBeRegisteredAndLookedUpOnManyThreads) {
  const auto negation = std::make_shared<tests::NegationTransformer>();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&, thread] {
      const std::string name = "Negation" + std::to_string(thread % 2);
      for (int count = 0; count < 200; ++count) {
        NSValueTransformer::setValueTransformer(negation, name);
        EXPECT_EQ(NSValueTransformer::valueTransformerForName(name), negation);
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST(NSValueTransformer, ABindingTakesItsTransformerFromTheFirstOptionElseByTheName) {
  const auto negation = std::make_shared<tests::NegationTransformer>();
  const auto registered = std::make_shared<tests::PresenceTransformer>();
  NSValueTransformer::setValueTransformer(registered, "Presence");
  const std::shared_ptr<NSObject> null = NSNull::null();
  struct Case {
    std::shared_ptr<NSObject> transformer;
    std::shared_ptr<NSObject> name;
    std::shared_ptr<NSValueTransformer> expected;
    std::size_t complaints = 0;
  };
  const std::vector<Case> cases{
      {nullptr, nullptr, nullptr},
      {null, nullptr, nullptr},
      {nullptr, null, nullptr},
      {null, null, nullptr},
      {negation, nullptr, negation},
      {negation, null, negation},
      {negation, text("Presence"), negation},
      {negation, text("unknown"), negation},
      {nullptr, text("Presence"), registered},
      {null, text("Presence"), registered},
      {nullptr, text("unknown"), nullptr, 1},
      {null, text("unknown"), nullptr, 1},
      {nullptr, text(""), nullptr, 1},
      {nullptr, text("presence"), nullptr, 1},
      {nullptr, text("Presence\xE2\x80\x8B"), nullptr, 1},
      {nullptr, text("\xEF\xBB\xBFPresence"), nullptr, 1},
      {nullptr, text(std::string_view("Presence\0", 9)), nullptr, 1},
      {nullptr, text("\xFF"), nullptr, 1},
      {nullptr, number(5), nullptr, 1},
      {nullptr, negation, nullptr, 1},
      {text("Presence"), nullptr, nullptr, 1},
      {text("Presence"), text("Presence"), nullptr, 1},
      {number(1), null, nullptr, 1},
  };
  for (std::size_t index = 0; index < cases.size(); ++index) {
    const tests::ScopedDiagnostics diagnostics;
    const NSDictionary options{
        {std::string(NSValueTransformerBindingOption), cases[index].transformer},
        {std::string(NSValueTransformerNameBindingOption), cases[index].name}};
    EXPECT_EQ(valueTransformerOfOptions(options), cases[index].expected) << index;
    EXPECT_EQ(diagnostics.lines().size(), cases[index].complaints) << index;
  }
}

}  // namespace
}  // namespace vornix
