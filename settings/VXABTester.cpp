#include "settings/VXABTester.h"

#include <algorithm>
#include <limits>
#include <random>
#include <utility>

#include "logging/GTMLogger.h"
#include "platform/base/Format.h"
#include "platform/base/Mutex.h"
#include "settings/ABTestCode.h"
#include "settings/PreferenceKey.h"

namespace vornix {
namespace {

constexpr std::string_view kLetters = "ABCD";

std::uint32_t systemRandom(std::uint32_t bound) {
  std::random_device source;
  return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(source);
}

struct SharedTester {
  // Recursive, so that a tester that asks while it is being made gets an answer.
  RecursiveMutex mutex;
  bool making VORNIX_GUARDED_BY(mutex) = false;
  std::shared_ptr<VXABTester> tester VORNIX_GUARDED_BY(mutex);
};

}  // namespace

VXABTester::VXABTester(std::shared_ptr<VXDistributedPreferences> preferences,
                       const std::shared_ptr<NSUserDefaults>& userDefaults, RandomSource random)
    : preferences_(std::move(preferences)), random_(std::move(random)) {
  const auto code = preferences_->abTesterValues();
  if (userDefaults->ownObjectForKey(PreferenceKey::ABTesterValues)) {
    userDefaults->removeObjectForKey(PreferenceKey::ABTesterValues);
    userDefaults->synchronize();
  }
  if (code) restore(*code);
}

VXABTester::VXABTester()
    : VXABTester(VXDistributedPreferences::sharedInstance(), NSUserDefaults::standardUserDefaults(),
                 systemRandom) {}

std::shared_ptr<VXABTester> VXABTester::sharedTester(
    const std::function<std::shared_ptr<VXABTester>()>& make) {
  static auto& shared = *new SharedTester;
  const Lock lock(shared.mutex);
  if (!shared.tester && !std::exchange(shared.making, true)) {
    shared.tester = make();
    shared.making = false;
  }
  return shared.tester;
}

std::int64_t VXABTester::numberOfOptionsForCase(std::int64_t /*caseNumber*/) const {
  return 0;
}

std::int64_t VXABTester::predefinedOptionForCase(std::int64_t /*caseNumber*/) const {
  return noOption;
}

void VXABTester::setActiveCases(std::vector<std::int64_t> activeCases) {
  activeCases_ = std::move(activeCases);
}

std::int64_t VXABTester::caseOptionFromString(std::optional<std::string_view> letter) {
  if (!letter || letter->size() != 1) return noOption;
  const std::size_t option = kLetters.find(letter->front());
  return option == std::string_view::npos ? noOption : static_cast<std::int64_t>(option);
}

std::optional<std::string> VXABTester::humanReadableValueForOption(std::int64_t option) {
  if (option >= 0 && option < static_cast<std::int64_t>(kLetters.size())) {
    return std::string(1, kLetters[static_cast<std::size_t>(option)]);
  }
  GTMLogger::sharedLogger()->logDebug("No human readable value defined for A/B Testing option: %ld",
                                      option);
  return std::nullopt;
}

std::optional<std::string> VXABTester::humanReadableValueForCase(std::int64_t caseNumber) {
  return humanReadableValueForOption(optionForCase(caseNumber));
}

std::int64_t VXABTester::optionForCase(std::int64_t caseNumber) {
  const auto known = currentCases_.find(caseNumber);
  if (known != currentCases_.end()) return known->second;
  if (std::ranges::find(activeCases_, caseNumber) == activeCases_.end()) return noOption;
  updateHumanReadableValues();
  const auto assigned = currentCases_.find(caseNumber);
  return assigned != currentCases_.end() ? assigned->second : noOption;
}

void VXABTester::setOption(std::int64_t option, std::int64_t forCase) {
  const auto known = currentCases_.find(forCase);
  if (known != currentCases_.end() && known->second == option) return;
  currentCases_.insert_or_assign(forCase, option);
  updateHumanReadableValues();
}

std::string VXABTester::humanReadableValues() {
  if (!humanReadableValues_) updateHumanReadableValues();
  return humanReadableValues_.value_or(std::string());
}

void VXABTester::updateHumanReadableValues() {
  std::string code;
  for (const std::int64_t caseNumber : std::vector(activeCases_)) {
    const std::int64_t option = assignedOption(caseNumber);
    if (option == noOption) continue;
    code += text::format("%ld%@", caseNumber, humanReadableValueForOption(option));
  }
  setHumanReadableValues(code);
  preferences_->setAbTesterValues(code);
}

void VXABTester::restore(std::string_view code) {
  for (const auto& [caseNumber, letters] : parseABTestCode(code)) {
    currentCases_.insert_or_assign(caseNumber, caseOptionFromString(letters));
  }
}

std::int64_t VXABTester::assignedOption(std::int64_t caseNumber) {
  const auto known = currentCases_.find(caseNumber);
  if (known != currentCases_.end()) return known->second;
  std::int64_t option = predefinedOptionForCase(caseNumber);
  if (option == noOption) {
    const std::int64_t count = std::min<std::int64_t>(numberOfOptionsForCase(caseNumber),
                                                      std::numeric_limits<std::uint32_t>::max());
    if (count > 0) option = random_(static_cast<std::uint32_t>(count));
  }
  currentCases_.insert_or_assign(caseNumber, option);
  return option;
}

void VXABTester::setHumanReadableValues(std::string humanReadableValues) {
  willChangeValueForKey(humanReadableValuesKey);
  humanReadableValues_ = std::move(humanReadableValues);
  didChangeValueForKey(humanReadableValuesKey);
}

}  // namespace vornix
