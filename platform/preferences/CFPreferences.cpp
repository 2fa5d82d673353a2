#include "platform/preferences/CFPreferences.h"

#include <string>

#include "platform/base/Diagnostics.h"
#include "platform/preferences/PreferencesSearch.h"

namespace vornix {

std::optional<Value> CFPreferencesCopyValue(PreferencesStore& store, std::string_view key,
                                            std::string_view domain) {
  return store.copyValue(key, domain, PreferencesUser::Current);
}

void CFPreferencesSetValue(PreferencesStore& store, std::string_view key,
                           const std::optional<Value>& value, std::string_view domain) {
  if (value && containsNull(*value)) {
    reportDiagnostic("The preference \"" + std::string(key) + "\" cannot hold a null object");
    return;
  }
  if (const auto error = store.setValue(key, value, domain))
    reportDiagnostic(error->localizedDescription);
}

bool CFPreferencesSynchronize(PreferencesStore& store, std::string_view domain) {
  return store.synchronize(domain);
}

std::optional<Value> CFPreferencesCopyAppValue(PreferencesStore& store, std::string_view key,
                                               std::string_view domain) {
  const std::string domains[] = {std::string(domain)};
  return searchPreferences(store, key, domains);
}

}  // namespace vornix
