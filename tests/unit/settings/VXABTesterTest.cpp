#include "settings/VXABTester.h"

#include <gtest/gtest.h>

#include <limits>

#include "settings/ABTestCode.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using Cases = std::map<std::int64_t, std::int64_t>;

constexpr std::string_view kShared = "com.orvane.Vornix3";
constexpr std::string_view kOwn = "com.example.own";
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

class ExperimentTester : public VXABTester {
 public:
  using VXABTester::VXABTester;
  [[nodiscard]] std::int64_t numberOfOptionsForCase(std::int64_t caseNumber) const override {
    const auto found = options.find(caseNumber);
    return found == options.end() ? 0 : found->second;
  }
  [[nodiscard]] std::int64_t predefinedOptionForCase(std::int64_t caseNumber) const override {
    const auto found = predefined.find(caseNumber);
    return found == predefined.end() ? noOption : found->second;
  }

  Cases options;
  Cases predefined;
};

class Observer : public NSObject {
 public:
  explicit Observer(VXABTester& tester) : tester_(tester) {}
  void observeValueForKeyPath(std::string_view keyPath, NSObject& object) override {
    EXPECT_EQ(&object, &tester_);
    seen.push_back(std::string(keyPath) + "=" + tester_.humanReadableValues());
  }
  std::vector<std::string> seen;

 private:
  VXABTester& tester_;
};

class VXABTesterTest : public testing::Test {
 protected:
  std::shared_ptr<ExperimentTester> tester() {
    return std::make_shared<ExperimentTester>(
        std::make_shared<VXDistributedPreferences>(defaults_, store_), defaults_,
        [this](std::uint32_t bound) {
          bounds_.push_back(bound);
          return drawn_ % bound;
        });
  }
  void store(const Value& code, std::string_view domain = kShared) {
    static_cast<void>(store_.setValue("ABTesterValues", code, domain));
  }
  std::optional<Value> storedCode() {
    return store_.copyValue("ABTesterValues", kShared, PreferencesUser::Current);
  }

  fakes::ScopedSharedLogger logger_;
  fakes::FakePreferencesStore store_;
  NSNotificationCenter center_;
  std::shared_ptr<NSUserDefaults> defaults_ =
      std::make_shared<NSUserDefaults>(std::string(kOwn), store_, center_);
  std::vector<std::uint32_t> bounds_;
  std::uint32_t drawn_ = 0;
};

TEST_F(VXABTesterTest, RestoresCasesAndOptionsOfAStoredCode) {
  store("1A3C");
  EXPECT_EQ(tester()->currentCases(), (Cases{{1, 0}, {3, 2}}));
}

TEST_F(VXABTesterTest, RestoresAnUnknownLetterAsNoOptionThatIsNeverDrawn) {
  store("2X");
  const auto restored = tester();
  EXPECT_EQ(restored->currentCases(), (Cases{{2, -1}}));
  restored->options = {{2, 4}};
  restored->setActiveCases({2});
  EXPECT_EQ(restored->optionForCase(2), -1);
  restored->updateHumanReadableValues();
  EXPECT_TRUE(bounds_.empty());
  EXPECT_EQ(storedCode(), Value(""));
}

TEST_F(VXABTesterTest, StoresARunningCaseWithoutOptionsAsNoneAndLeavesItOutOfTheCode) {
  const auto fresh = tester();
  fresh->options = {{2, 2}};
  fresh->setActiveCases({1, 2});
  EXPECT_EQ(fresh->humanReadableValues(), "2A");
  EXPECT_EQ(fresh->currentCases(), (Cases{{1, -1}, {2, 0}}));
}

TEST_F(VXABTesterTest, DoesNotRewriteTheCodeForAnOptionAlreadyHeld) {
  store("1B");
  const auto restored = tester();
  restored->setActiveCases({1});
  const int writes = store_.writes();
  restored->setOption(1, 1);
  EXPECT_EQ(store_.writes(), writes);
  restored->setOption(3, 1);
  EXPECT_EQ(store_.writes(), writes + 1);
  EXPECT_EQ(storedCode(), Value("1D"));
}

TEST_F(VXABTesterTest, StoresTheEmptyTextOnAFreshInstallWithoutRunningCases) {
  const auto fresh = tester();
  EXPECT_EQ(storedCode(), std::nullopt);
  EXPECT_EQ(fresh->humanReadableValues(), "");
  EXPECT_EQ(storedCode(), Value(""));
  EXPECT_EQ(store_.synchronized().back(), kShared);
}

TEST_F(VXABTesterTest, DrawsAnOptionOnceAndKeepsItOverRestarts) {
  drawn_ = 2;
  const auto first = tester();
  first->options = {{7, 3}};
  first->setActiveCases({7});
  EXPECT_EQ(first->optionForCase(7), 2);
  EXPECT_EQ(bounds_, std::vector<std::uint32_t>{3});
  drawn_ = 0;
  const auto second = tester();
  second->options = {{7, 3}};
  second->setActiveCases({7});
  EXPECT_EQ(second->optionForCase(7), 2);
  EXPECT_EQ(second->humanReadableValueForCase(7), "C");
  EXPECT_EQ(bounds_.size(), 1U);
}

TEST_F(VXABTesterTest, PrefersAForcedOptionToADraw) {
  const auto fresh = tester();
  fresh->options = {{1, 2}};
  fresh->predefined = {{1, 3}};
  fresh->setActiveCases({1});
  EXPECT_EQ(fresh->humanReadableValues(), "1D");
  EXPECT_TRUE(bounds_.empty());
}

TEST_F(VXABTesterTest, ListsTheRunningCasesInTheirOrder) {
  store("1A2B10C");
  const auto restored = tester();
  restored->setActiveCases({10, 1});
  EXPECT_EQ(restored->humanReadableValues(), "10C1A");
  EXPECT_EQ(restored->optionForCase(2), 1);
}

TEST_F(VXABTesterTest, DrawsAStoppedCaseAnewOnceItDroppedOutOfTheCode) {
  store("1A2B");
  const auto first = tester();
  first->setActiveCases({2});
  first->updateHumanReadableValues();
  EXPECT_EQ(storedCode(), Value("2B"));
  drawn_ = 3;
  const auto second = tester();
  second->options = {{1, 4}};
  second->setActiveCases({1, 2});
  EXPECT_EQ(second->humanReadableValues(), "1D2B");
}

TEST_F(VXABTesterTest, AnswersNoOptionForACaseThatIsNeitherKnownNorRunning) {
  const auto fresh = tester();
  fresh->options = {{5, 2}};
  EXPECT_EQ(fresh->optionForCase(5), -1);
  EXPECT_TRUE(fresh->currentCases().empty());
  EXPECT_EQ(storedCode(), std::nullopt);
}

TEST_F(VXABTesterTest, LogsAnOptionWithoutALetterAndPrintsItAsAbsent) {
  const auto fresh = tester();
  fresh->setActiveCases({1});
  fresh->setOption(4, 1);
  EXPECT_EQ(storedCode(), Value("1(null)"));
  EXPECT_EQ(logger_.messages(LogLevelDebug),
            std::vector<std::string>{"No human readable value defined for A/B Testing option: 4"});
  EXPECT_EQ(fresh->humanReadableValueForCase(1), std::nullopt);
}

TEST_F(VXABTesterTest, MapsLettersToOptionsExactly) {
  const std::pair<std::optional<std::string_view>, std::int64_t> cases[] = {
      {"A", 0},  {"B", 1},   {"C", 2}, {"D", 3},   {"E", -1},
      {"a", -1}, {"AB", -1}, {"", -1}, {"A ", -1}, {std::nullopt, -1}};
  for (const auto& [letter, option] : cases) {
    EXPECT_EQ(VXABTester::caseOptionFromString(letter), option) << letter.value_or("none");
  }
}

TEST_F(VXABTesterTest, RemovesTheCodeFromTheOwnPreferencesAfterTheTakeOver) {
  store("1B", kOwn);
  const auto taken = tester();
  EXPECT_EQ(taken->currentCases(), (Cases{{1, 1}}));
  EXPECT_EQ(storedCode(), Value("1B"));
  EXPECT_TRUE(store_.contents(kOwn).empty());
  EXPECT_EQ(store_.synchronized().back(), kOwn);
}

TEST_F(VXABTesterTest, LeavesTheOwnPreferencesAloneWhereTheyHoldNoCode) {
  store("1B");
  defaults_->addSuiteNamed(kShared);
  const int writes = store_.writes();
  static_cast<void>(tester());
  EXPECT_EQ(store_.writes(), writes);
}

TEST_F(VXABTesterTest, DoesNotRebuildTheCodeWhenMade) {
  store("1A3C");
  static_cast<void>(tester());
  EXPECT_EQ(storedCode(), Value("1A3C"));
}

TEST_F(VXABTesterTest, TellsObserversOfTheCodeAfterEveryRebuild) {
  const auto fresh = tester();
  const auto observer = std::make_shared<Observer>(*fresh);
  fresh->addObserver(observer, VXABTester::humanReadableValuesKey);
  fresh->setActiveCases({1});
  fresh->setOption(0, 1);
  fresh->updateHumanReadableValues();
  EXPECT_EQ(observer->seen,
            (std::vector<std::string>{"humanReadableValues=1A", "humanReadableValues=1A"}));
}

TEST_F(VXABTesterTest, IgnoresAStoredCodeThatIsNoText) {
  store(5);
  EXPECT_TRUE(tester()->currentCases().empty());
}

class ABTestCodeTest : public VXABTesterTest {};

TEST_F(ABTestCodeTest, IsScannedAsThePlatformsScannerDoes) {
  const std::pair<std::string_view, Cases> cases[] = {
      {"1A3C", {{1, 0}, {3, 2}}},
      {"A1", {{1, -1}}},
      {" 1 A 2", {{1, -1}, {2, -1}}},
      {"1", {{1, -1}}},
      {"12 B", {{12, 1}}},
      {"1A 3C", {{1, -1}, {3, 2}}},
      {"1A\n", {{1, -1}}},
      {"1 ", {{1, -1}}},
      {"", {}},
      {" \t\n", {}},
      {"\u00a0\u200b", {}},
      {"-1A", {{-1, 0}}},
      {"-1A-2B", {{-1, -1}, {2, 1}}},
      {"1-3", {{1, -1}, {3, -1}}},
      {"01A", {{1, 0}}},
      {"+5B", {{5, 1}}},
      {"9223372036854775806D", {{kLargest - 1, 3}}},
      {"9223372036854775807A", {}},
      {"9223372036854775808A", {}},
      {"99999999999999999999999A", {}},
      {"-9223372036854775808A", {{kSmallest, 0}}},
      {"-9223372036854775809A", {{kSmallest, 0}}},
      {"1.5A", {{1, -1}, {5, 0}}},
      {"0x1A", {{0, -1}, {1, 0}}},
      {"1\u00a0A", {{1, 0}}},
      {"1A1B", {{1, 1}}},
  };
  for (const auto& [code, expected] : cases) {
    store(code);
    EXPECT_EQ(tester()->currentCases(), expected) << '"' << code << '"';
  }
}

TEST_F(ABTestCodeTest, EndsAtADigitOfAnotherScriptInsteadOfTurningForever) {
  const std::pair<std::string_view, Cases> cases[] = {
      {"\u0663", {}},  {"1A\u06632B", {{1, 0}}},   {"1\u0663A", {{1, -1}}},
      {"\uff11A", {}}, {"1A\U0001D7CE", {{1, 0}}}, {"A\u0663", {}},
  };
  for (const auto& [code, expected] : cases) {
    store(code);
    EXPECT_EQ(tester()->currentCases(), expected) << '"' << code << '"';
  }
}

TEST_F(ABTestCodeTest, TakesAnyBytes) {
  EXPECT_TRUE(parseABTestCode("\xff\xfe\xc3").empty());
  EXPECT_EQ(parseABTestCode("1\xff").size(), 1U);
  EXPECT_EQ(parseABTestCode(std::string_view("1A\0"
                                             "2B",
                                             5))
                .size(),
            2U);
}

class FirstAskingTester : public VXABTester {
 public:
  FirstAskingTester() : seenWhileMade(VXABTester::sharedTester()) {}
  std::shared_ptr<VXABTester> seenWhileMade;
};

TEST(SharedTesterTest, HasTheClassThatAsksFirstAndSurvivesAskingWhileItIsMade) {
  const auto first = VXABTester::sharedTester<FirstAskingTester>();
  const auto* made = dynamic_cast<FirstAskingTester*>(first.get());
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->seenWhileMade, nullptr);
  EXPECT_EQ(VXABTester::sharedTester(), first);
}

TEST(SharedTesterTest, DrawsFromASourceWithinBounds) {
  class Coin : public VXABTester {
    [[nodiscard]] std::int64_t numberOfOptionsForCase(std::int64_t /*caseNumber*/) const override {
      return 2;
    }
  };
  Coin coin;
  std::vector<std::int64_t> cases(64);
  for (std::size_t index = 0; index < cases.size(); ++index) {
    cases[index] = static_cast<std::int64_t>(index);
  }
  coin.setActiveCases(cases);
  std::size_t heads = 0;
  for (const std::int64_t number : cases) {
    const std::int64_t option = coin.optionForCase(number);
    ASSERT_TRUE(option == 0 || option == 1);
    heads += option == 0 ? 1 : 0;
  }
  EXPECT_GT(heads, 0U);
  EXPECT_LT(heads, cases.size());
}

TEST(VXABTesterBaseTest, RunsNoCases) {
  VXABTester tester;
  EXPECT_TRUE(tester.activeCases().empty());
  EXPECT_EQ(tester.numberOfOptionsForCase(1), 0);
  EXPECT_EQ(tester.predefinedOptionForCase(1), -1);
}

}  // namespace
}  // namespace vornix
