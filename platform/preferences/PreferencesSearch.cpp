#include "platform/preferences/PreferencesSearch.h"

#include <algorithm>
#include <utility>

#include "platform/desktop/AccessibilityStatus.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {
namespace {

std::optional<Value> searchUser(PreferencesStore& store, std::string_view key,
                                std::span<const std::string> domains, PreferencesUser user) {
  for (const std::string& domain : domains) {
    if (domain.empty()) continue;
    if (auto value = store.copyValue(key, domain, user)) return value;
  }
  return store.copyValue(key, kGlobalPreferencesDomain, user);
}

std::optional<Value> languagesOfLocale() {
  Array languages;
  for (std::string& language : NSProcessInfo::processInfo().localeLanguages()) {
    languages.emplace_back(std::move(language));
  }
  return languages.empty() ? std::nullopt : std::optional<Value>(std::move(languages));
}

std::optional<Value> environmentValue(std::string_view key, std::span<const std::string> domains) {
  if (key == "AppleLanguages") return languagesOfLocale();
  const bool isOnScreenReader =
      key == "voiceOverOnOffKey" &&
      std::ranges::find(domains, "com.apple.universalaccess") != domains.end();
  if (!isOnScreenReader) return std::nullopt;
  const auto isEnabled = sharedAccessibilityStatus().isScreenReaderEnabled();
  return isEnabled ? std::optional<Value>(*isEnabled) : std::nullopt;
}

}  // namespace

std::optional<Value> searchPreferences(PreferencesStore& store, std::string_view key,
                                       std::span<const std::string> domains) {
  if (auto value = searchUser(store, key, domains, PreferencesUser::Current)) return value;
  if (auto value = searchUser(store, key, domains, PreferencesUser::Any)) return value;
  return environmentValue(key, domains);
}

bool containsNull(const Value& value) {
  if (value.is<Null>()) return true;
  if (const auto* array = value.as<Array>()) return std::ranges::any_of(*array, containsNull);
  const auto* dictionary = value.as<Dictionary>();
  return dictionary != nullptr && std::ranges::any_of(*dictionary, [](const auto& entry) {
           return containsNull(entry.second);
         });
}

}  // namespace vornix
