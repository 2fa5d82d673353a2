#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/VXABTester.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix::tests {

using Cases = std::map<std::int64_t, std::int64_t>;

inline constexpr std::string_view kShared = "com.orvane.Vornix3";
inline constexpr std::string_view kOwn = "com.example.own";

// A tester with the experiments that a test gives it.
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

// Testers over preferences in memory and draws that the test chooses.
class ABTesterFixture : public testing::Test {
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

}  // namespace vornix::tests
