#pragma once

#include <string>

#include "platform/desktop/NSWorkspace.h"
#include "platform/preferences/NSUserDefaults.h"

// The languages that the person prefers, from "AppleLanguages" of the preferences. A value that is
// no list counts as absent. Any thread.
namespace vornix {

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

}  // namespace vornix
