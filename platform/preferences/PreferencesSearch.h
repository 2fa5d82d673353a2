#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/base/Value.h"
#include "platform/preferences/PreferencesStore.h"

namespace vornix {

// The domain that belongs to every program.
inline constexpr std::string_view kGlobalPreferencesDomain = ".GlobalPreferences";

// The key's first value in: `domains` in their order (empty names are skipped), the user's global
// domain, the same domains for any user. "AppleLanguages" falls back to the languages of the locale
// environment, "voiceOverOnOffKey" of "com.apple.universalaccess" to what the desktop tells of its
// screen reader, which may take seconds. Any thread.
[[nodiscard]] std::optional<Value> searchPreferences(PreferencesStore& store, std::string_view key,
                                                     std::span<const std::string> domains);

// True when the value holds a null object anywhere, which no property list can.
[[nodiscard]] bool containsNull(const Value& value);

}  // namespace vornix
