#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/base/NSObject.h"
#include "platform/preferences/PreferencesStore.h"
#include "platform/runloop/NSNotificationCenter.h"

namespace vornix {

// A program's view of its preferences. Reads search, first hit wins: arguments ("-Key value"), the
// program's own domain, suites (the most recently added first), the user's global domain, the same
// three for any user, registered defaults. Writes go to the own domain. Every set and removal posts
// `NSUserDefaultsDidChangeNotification` with this object, on the calling thread. Any thread.
class NSUserDefaults : public NSObject {
 public:
  // The store and the centre must outlive the object. An empty domain (a program without an
  // identifier) keeps nothing beyond the process.
  NSUserDefaults(std::string domain, PreferencesStore& store, NSNotificationCenter& center);

  // The running program's preferences, in the domain of its bundle identifier.
  [[nodiscard]] static std::shared_ptr<NSUserDefaults> standardUserDefaults();

  // None when no searched domain has the key.
  [[nodiscard]] std::optional<Value> objectForKey(std::string_view key) const;
  // Numbers by "not zero", texts by the platform's rule, everything else false.
  [[nodiscard]] bool boolForKey(std::string_view key) const;
  // Numbers and texts, else 0.
  [[nodiscard]] std::int64_t integerForKey(std::string_view key) const;
  // None for anything but a text.
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;

  // None removes. A null object is no property-list value: it is refused with a diagnostic.
  void setObject(const std::optional<Value>& value, std::string_view key);
  void removeObjectForKey(std::string_view key);
  // The value of the own domain alone.
  [[nodiscard]] std::optional<Value> ownObjectForKey(std::string_view key) const;

  // In memory only, lowest in the search; later calls win.
  void registerDefaults(const Dictionary& defaults);
  // Goes directly below the own domain; adding an old one again moves it up. The own domain's name
  // is ignored.
  void addSuiteNamed(std::string_view suite);
  // "-Key value" pairs, values read as property lists (plain words are texts).
  void setArguments(const std::vector<std::string>& arguments);

  // Makes this program's changes durable. False when something could not be written.
  bool synchronize();

  [[nodiscard]] std::string_view className() const override { return "NSUserDefaults"; }

 private:
  void setOwn(std::string_view key, const std::optional<Value>& value);

  std::string domain_;
  PreferencesStore& store_;
  NSNotificationCenter& center_;
  mutable Mutex mutex_;
  // The own domain, then the suites. Replaced as a whole: the lock is not held during a search.
  std::shared_ptr<const std::vector<std::string>> searchedDomains_ VORNIX_GUARDED_BY(mutex_);
  Dictionary registered_ VORNIX_GUARDED_BY(mutex_);
  Dictionary arguments_ VORNIX_GUARDED_BY(mutex_);
  // The own domain of a program without an identifier.
  Dictionary unsaved_ VORNIX_GUARDED_BY(mutex_);
};

}  // namespace vornix
