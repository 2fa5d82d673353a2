#pragma once

#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/preferences/PreferencesStore.h"

namespace vornix::fakes {

// Preferences in memory, with a record of what was made durable and a switch that makes writing
// fail.
class FakePreferencesStore final : public PreferencesStore {
 public:
  [[nodiscard]] std::optional<Value> copyValue(std::string_view key, std::string_view domain,
                                               PreferencesUser user) override;
  std::optional<NSError> setValue(std::string_view key, const std::optional<Value>& value,
                                  std::string_view domain) override;
  bool synchronize(std::string_view domain) override;
  bool synchronizeAll() override;

  void setAnyUserValue(std::string_view key, const Value& value, std::string_view domain);
  void failWrites(bool fail);
  // The domain's keys of the current user.
  [[nodiscard]] Dictionary contents(std::string_view domain) const;
  // Domains given to `synchronize`, in order; "*" for all.
  [[nodiscard]] std::vector<std::string> synchronized() const;
  [[nodiscard]] int writes() const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, Dictionary, std::less<>> current_;
  std::map<std::string, Dictionary, std::less<>> any_;
  std::vector<std::string> synchronized_;
  int writes_ = 0;
  bool failing_ = false;
};

// The one that `sharedPreferencesStore` answers on the fake platform.
FakePreferencesStore& processPreferences();

}  // namespace vornix::fakes
