#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSError.h"
#include "platform/base/Value.h"

namespace vornix {

// Whose preferences a domain is read from.
enum class PreferencesUser { Current, Any };

// Persistent settings: per user and domain one set of keys with property-list values. The domain
// ".GlobalPreferences" belongs to every program. Any thread.
class PreferencesStore {
 public:
  virtual ~PreferencesStore() = default;

  // The value as it stands now, other programs' changes included. None when the key, the domain or
  // a readable file of it is missing.
  [[nodiscard]] virtual std::optional<Value> copyValue(std::string_view key,
                                                       std::string_view domain,
                                                       PreferencesUser user) = 0;

  // Writes one key of the current user's domain (none removes it), leaving every other key as it
  // stands, visible to other programs at once. An error when it could not be stored; the value is
  // then still what this process reads, and is stored with the next success.
  virtual std::optional<NSError> setValue(std::string_view key, const std::optional<Value>& value,
                                          std::string_view domain) = 0;

  // Makes what was set durable against loss of power. True when nothing is left unwritten.
  virtual bool synchronize(std::string_view domain) = 0;
  // The same for every domain written by this process.
  virtual bool synchronizeAll() = 0;
};

// The process's store, never destroyed.
[[nodiscard]] PreferencesStore& sharedPreferencesStore();

}  // namespace vornix
