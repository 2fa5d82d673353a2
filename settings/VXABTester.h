#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/NSObject.h"
#include "platform/preferences/NSUserDefaults.h"
#include "settings/VXDistributedPreferences.h"

namespace vornix {

// Assigns the user, once and for good, to one option of each running A/B experiment ("case"), and
// keeps the assignments in the shared preferences as a code such as "1A3C". A subclass, or the user
// of the shared tester, says which cases run; this class runs none. One thread at a time.
class VXABTester : public NSObject {
 public:
  static constexpr std::int64_t noOption = -1;
  static constexpr std::string_view humanReadableValuesKey = "humanReadableValues";

  // A number from 0 to `bound` - 1, all equally likely.
  using RandomSource = std::function<std::uint32_t(std::uint32_t bound)>;

  // Restores the assignments of the stored code, and removes a code that the process's own
  // preferences still hold.
  VXABTester(std::shared_ptr<VXDistributedPreferences> preferences,
             const std::shared_ptr<NSUserDefaults>& userDefaults, RandomSource random);
  // Over the process's own preferences and a random source that cannot be foretold.
  VXABTester();

  // The one tester, of the class that asks first. Null to a tester that asks while it is being
  // made itself. Any thread.
  template <std::derived_from<VXABTester> T = VXABTester>
  [[nodiscard]] static std::shared_ptr<VXABTester> sharedTester() {
    return sharedTester([]() -> std::shared_ptr<VXABTester> { return std::make_shared<T>(); });
  }

  // How many options a case has, and the option that it is to get; 0 and -1 for none.
  [[nodiscard]] virtual std::int64_t numberOfOptionsForCase(std::int64_t caseNumber) const;
  [[nodiscard]] virtual std::int64_t predefinedOptionForCase(std::int64_t caseNumber) const;

  // The running cases, in the order of the code.
  [[nodiscard]] const std::vector<std::int64_t>& activeCases() const { return activeCases_; }
  void setActiveCases(std::vector<std::int64_t> activeCases);
  // The option of every case that is known, running or not; -1 counts as assigned.
  [[nodiscard]] const std::map<std::int64_t, std::int64_t>& currentCases() const {
    return currentCases_;
  }
  [[nodiscard]] std::map<std::int64_t, std::int64_t>& currentCases() { return currentCases_; }

  // "A" to "D" give 0 to 3, anything else -1.
  [[nodiscard]] static std::int64_t caseOptionFromString(std::optional<std::string_view> letter);
  // None, and a debug message, for an option without a letter.
  [[nodiscard]] static std::optional<std::string> humanReadableValueForOption(std::int64_t option);
  [[nodiscard]] std::optional<std::string> humanReadableValueForCase(std::int64_t caseNumber);

  // Assigns a running case that has no option yet; -1 for a case that is neither known nor running.
  [[nodiscard]] std::int64_t optionForCase(std::int64_t caseNumber);
  void setOption(std::int64_t option, std::int64_t forCase);

  // The code of the running cases, built when it is first asked for.
  [[nodiscard]] std::string humanReadableValues();
  // Assigns what is missing, rebuilds the code, stores it, and tells those who observe
  // "humanReadableValues".
  void updateHumanReadableValues();

  [[nodiscard]] std::string_view className() const override { return "VXABTester"; }

 private:
  static std::shared_ptr<VXABTester> sharedTester(
      const std::function<std::shared_ptr<VXABTester>()>& make);

  void restore(std::string_view code);
  [[nodiscard]] std::int64_t assignedOption(std::int64_t caseNumber);
  void setHumanReadableValues(std::string humanReadableValues);

  const std::shared_ptr<VXDistributedPreferences> preferences_;
  const RandomSource random_;
  std::vector<std::int64_t> activeCases_;
  std::map<std::int64_t, std::int64_t> currentCases_;
  std::optional<std::string> humanReadableValues_;
};

}  // namespace vornix
