#pragma once

#include <map>
#include <string>

#include "platform/base/Mutex.h"
#include "platform/linux/preferences/PreferencesFile.h"
#include "platform/preferences/PreferencesStore.h"

namespace vornix {

// One property-list file a domain: "Library/Preferences" of the home, and of the system for any
// user. Reads binary and XML, writes binary.
class LinuxPreferencesStore final : public PreferencesStore {
 public:
  // Without a home (the empty text) nothing of the user is read, and writing fails.
  explicit LinuxPreferencesStore(std::string home,
                                 std::string anyUserFolder = "/Library/Preferences",
                                 const PreferencesLimits& limits = {});

  [[nodiscard]] std::optional<Value> copyValue(std::string_view key, std::string_view domain,
                                               PreferencesUser user) override;
  std::optional<NSError> setValue(std::string_view key, const std::optional<Value>& value,
                                  std::string_view domain) override;
  bool synchronize(std::string_view domain) override;
  bool synchronizeAll() override;

 private:
  using Files = std::map<std::string, PreferencesFile, std::less<>>;

  // Null for a domain that no file can stand for.
  PreferencesFile* file(std::string_view domain, PreferencesUser user);

  const std::string home_;
  const std::string currentUserFolder_;
  const std::string anyUserFolder_;
  const PreferencesLimits limits_;
  Mutex mutex_;
  Files currentUser_ VORNIX_GUARDED_BY(mutex_);
  Files anyUser_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
