#include "foundation/NSWorkspace+Additions.h"

#include <algorithm>
#include <cstddef>

#include "platform/base/Text.h"
#include "platform/preferences/CFPreferences.h"

namespace vornix {
namespace {

constexpr std::size_t kLanguagesReported = 3;

std::vector<std::string> storedLanguages(const NSUserDefaults& defaults) {
  const auto value = defaults.objectForKey("AppleLanguages");
  const auto* list = value ? value->as<Array>() : nullptr;
  std::vector<std::string> languages;
  if (list == nullptr) return languages;
  for (const auto& language : *list) languages.push_back(language.description());
  return languages;
}

}  // namespace

std::string preferredLanguages(const NSWorkspace& /*self*/, const NSUserDefaults& defaults) {
  auto languages = storedLanguages(defaults);
  languages.resize(std::min(languages.size(), kLanguagesReported));
  return text::join(languages, ",");
}

std::string preferredLanguageCode(const NSWorkspace& /*self*/, const NSUserDefaults& defaults) {
  const auto languages = storedLanguages(defaults);
  return languages.empty() ? "en" : languages.front();
}

std::string preferredLanguage(const NSWorkspace& self, const NSUserDefaults& defaults) {
  const auto code = preferredLanguageCode(self, defaults);
  return code.substr(0, code.find('-'));
}

void revealInFinderFile(const NSWorkspace& /*self*/, std::string_view path,
                        const NSFileManager& files) {
  if (!files.fileExistsAtPath(path)) return;
  NSWorkspace::sharedWorkspace().selectFileInFileViewerRootedAtPath(path, "");
}

bool isVoiceOverOn(const NSWorkspace& /*self*/, PreferencesStore& store) {
  const auto value =
      CFPreferencesCopyAppValue(store, "voiceOverOnOffKey", "com.apple.universalaccess");
  return value && value->boolValue();
}

}  // namespace vornix
