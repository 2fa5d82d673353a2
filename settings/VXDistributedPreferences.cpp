#include "settings/VXDistributedPreferences.h"

#include <utility>

#include "platform/preferences/CFPreferences.h"
#include "settings/PreferenceKey.h"

namespace vornix {
namespace {

template <typename T>
std::optional<T> typed(const std::optional<Value>& value) {
  const T* content = value ? value->as<T>() : nullptr;
  return content != nullptr ? std::optional(*content) : std::nullopt;
}

template <typename T>
std::optional<Value> untyped(const std::optional<T>& content) {
  return content ? std::optional<Value>(*content) : std::nullopt;
}

}  // namespace

VXDistributedPreferences::VXDistributedPreferences(std::shared_ptr<NSUserDefaults> userDefaults,
                                                   PreferencesStore& store)
    : userDefaults_(std::move(userDefaults)), store_(store) {
  importValueForKey(PreferenceKey::PlaySounds);
}

void VXDistributedPreferences::load() {
  static_cast<void>(sharedInstance());
}

const std::shared_ptr<VXDistributedPreferences>& VXDistributedPreferences::sharedInstance() {
  static const auto& instance = *new std::shared_ptr<VXDistributedPreferences>(
      std::make_shared<VXDistributedPreferences>(NSUserDefaults::standardUserDefaults()));
  return instance;
}

bool VXDistributedPreferences::soundsEnabled() {
  const auto value = importValueForKey(PreferenceKey::PlaySounds);
  return value && value->boolValue();
}

void VXDistributedPreferences::setSoundsEnabled(bool soundsEnabled) {
  storeValue(Value(soundsEnabled), PreferenceKey::PlaySounds);
}

std::optional<std::string> VXDistributedPreferences::abTesterValues() {
  return typed<std::string>(importValueForKey(PreferenceKey::ABTesterValues));
}

void VXDistributedPreferences::setAbTesterValues(const std::optional<std::string>& abTesterValues) {
  storeValue(untyped(abTesterValues), PreferenceKey::ABTesterValues);
}

std::optional<Date> VXDistributedPreferences::appsAnalyticsReportDate() {
  return typed<Date>(importValueForKey(PreferenceKey::AppsAnalyticsReportDate));
}

void VXDistributedPreferences::setAppsAnalyticsReportDate(
    const std::optional<Date>& appsAnalyticsReportDate) {
  storeValue(untyped(appsAnalyticsReportDate), PreferenceKey::AppsAnalyticsReportDate);
}

std::optional<std::string> VXDistributedPreferences::quillbaseSessionIdentifier() {
  return typed<std::string>(importValueForKey(PreferenceKey::QB_SID));
}

void VXDistributedPreferences::setQuillbaseSessionIdentifier(
    const std::optional<std::string>& quillbaseSessionIdentifier) {
  storeValue(untyped(quillbaseSessionIdentifier), PreferenceKey::QB_SID);
}

std::optional<Value> VXDistributedPreferences::importValueForKey(std::string_view key) {
  if (auto value = CFPreferencesCopyValue(store_, key, applicationID)) return value;
  auto value = userDefaults_ ? userDefaults_->objectForKey(key) : std::nullopt;
  if (value) storeValue(value, key);
  return value;
}

void VXDistributedPreferences::storeValue(const std::optional<Value>& value, std::string_view key) {
  CFPreferencesSetValue(store_, key, value, applicationID);
  CFPreferencesSynchronize(store_, applicationID);
}

}  // namespace vornix
