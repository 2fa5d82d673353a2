#include "tests/fakes/FakePreferencesStore.h"

namespace vornix {

fakes::FakePreferencesStore& fakes::processPreferences() {
  static auto& store = *new FakePreferencesStore;
  return store;
}

PreferencesStore& sharedPreferencesStore() {
  return fakes::processPreferences();
}

}  // namespace vornix
