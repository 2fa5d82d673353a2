#pragma once

#include <string>
#include <string_view>

#include "platform/desktop/NSWorkspace.h"
#include "platform/files/NSFileManager.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/preferences/PreferencesStore.h"

namespace vornix {

// The languages that the person prefers, from "AppleLanguages" of the preferences. A value that is
// no list counts as absent. Any thread.

// The first three, joined by ","; empty when there is none.
[[nodiscard]] std::string preferredLanguages(
    const NSWorkspace& self,
    const NSUserDefaults& defaults = *NSUserDefaults::standardUserDefaults());

// The first one as it is stored, else "en".
[[nodiscard]] std::string preferredLanguageCode(
    const NSWorkspace& self,
    const NSUserDefaults& defaults = *NSUserDefaults::standardUserDefaults());

// The same up to its first "-".
[[nodiscard]] std::string preferredLanguage(
    const NSWorkspace& self,
    const NSUserDefaults& defaults = *NSUserDefaults::standardUserDefaults());

// Selects the file or folder in the desktop's file viewer, through the shared workspace. Does
// nothing when the path names nothing. Main thread.
void revealInFinderFile(const NSWorkspace& self, std::string_view path,
                        const NSFileManager& files = NSFileManager::defaultManager());

// Whether the screen reader is on: "voiceOverOnOffKey" of "com.apple.universalaccess", else what
// the desktop tells, else false. Asking the desktop may take seconds. Any thread.
[[nodiscard]] bool isVoiceOverOn(const NSWorkspace& self,
                                 PreferencesStore& store = sharedPreferencesStore());

}  // namespace vornix
