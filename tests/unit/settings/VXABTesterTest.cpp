#include "settings/VXABTester.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/unit/settings/ABTesterFixture.h"

namespace vornix::tests {
namespace {

class VXABTesterTest : public ABTesterFixture {};

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

TEST_F(VXABTesterTest, HasNoLetterForACaseWithoutAnOptionAndSaysSo) {
  EXPECT_EQ(tester()->humanReadableValueForCase(9), std::nullopt);
  EXPECT_EQ(logger_.messages(LogLevelDebug),
            std::vector<std::string>{"No human readable value defined for A/B Testing option: -1"});
}

TEST_F(VXABTesterTest, NamesEveryOptionThatHasALetter) {
  const std::pair<std::int64_t, std::string_view> letters[] = {
      {0, "A"}, {1, "B"}, {2, "C"}, {3, "D"}};
  for (const auto& [option, letter] : letters) {
    EXPECT_EQ(VXABTester::humanReadableValueForOption(option), letter);
  }
  EXPECT_TRUE(logger_.messages().empty());
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
}  // namespace vornix::tests
