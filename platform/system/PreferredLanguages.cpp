#include "platform/preferences/CFPreferences.h"
#include "platform/system/NSBundle.h"

namespace vornix {

std::vector<std::string> preferredLanguages() {
  std::vector<std::string> languages;
  const auto value =
      CFPreferencesCopyAppValue(sharedPreferencesStore(), "AppleLanguages",
                                NSBundle::mainBundle().bundleIdentifier().value_or(std::string()));
  const auto* tags = value ? value->as<Array>() : nullptr;
  for (const Value& tag : tags != nullptr ? *tags : Array()) {
    const auto* text = tag.as<std::string>();
    if (text != nullptr && !text->empty()) languages.push_back(*text);
  }
  if (languages.empty()) languages.emplace_back("en");
  return languages;
}

}  // namespace vornix
