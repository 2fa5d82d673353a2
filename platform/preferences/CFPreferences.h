#pragma once

#include <optional>
#include <string_view>

#include "platform/base/Value.h"
#include "platform/preferences/PreferencesStore.h"

namespace vornix {

// Preferences of a named domain, whatever program runs. Any thread.

// Exactly that domain, current user, any host.
[[nodiscard]] std::optional<Value> CFPreferencesCopyValue(PreferencesStore& store,
                                                          std::string_view key,
                                                          std::string_view domain);
// None removes. A failure is reported as a diagnostic.
void CFPreferencesSetValue(PreferencesStore& store, std::string_view key,
                           const std::optional<Value>& value, std::string_view domain);
bool CFPreferencesSynchronize(PreferencesStore& store, std::string_view domain);
// The whole search list of that application: its domain, the user's global domain, then both for
// any user, then what `searchPreferences` falls back to.
[[nodiscard]] std::optional<Value> CFPreferencesCopyAppValue(PreferencesStore& store,
                                                             std::string_view key,
                                                             std::string_view domain);

}  // namespace vornix
