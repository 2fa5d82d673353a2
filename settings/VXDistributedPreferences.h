#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/NSObject.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/preferences/PreferencesStore.h"

namespace vornix {

// The settings that have one value for all programs of the family. They live in the main
// application's domain, whatever program runs; a setting that is not there yet is taken over, once,
// from the program's own preferences. Reads answer none where neither has it or where the value is
// of another type. Every write is flushed at once; a failure is reported as a diagnostic. Any
// thread.
class VXDistributedPreferences : public NSObject {
 public:
  // The domain that holds the shared settings.
  static constexpr std::string_view applicationID = "com.orvane.Vornix3";

  // `userDefaults` is the source of take-overs only. Takes over "PlaySounds" at once. The store
  // must outlive the object.
  explicit VXDistributedPreferences(std::shared_ptr<NSUserDefaults> userDefaults,
                                    PreferencesStore& store = sharedPreferencesStore());

  // Makes the shared instance. A program calls it before anything else.
  static void load();
  // The one instance, over the standard user defaults.
  [[nodiscard]] static const std::shared_ptr<VXDistributedPreferences>& sharedInstance();

  // False when it is set nowhere.
  [[nodiscard]] bool soundsEnabled();
  void setSoundsEnabled(bool soundsEnabled);

  // The A/B assignment code.
  [[nodiscard]] std::optional<std::string> abTesterValues();
  void setAbTesterValues(const std::optional<std::string>& abTesterValues);

  [[nodiscard]] std::optional<Date> appsAnalyticsReportDate();
  void setAppsAnalyticsReportDate(const std::optional<Date>& appsAnalyticsReportDate);

  [[nodiscard]] std::optional<std::string> quillbaseSessionIdentifier();
  void setQuillbaseSessionIdentifier(const std::optional<std::string>& quillbaseSessionIdentifier);

  [[nodiscard]] std::string_view className() const override { return "VXDistributedPreferences"; }

 private:
  std::optional<Value> importValueForKey(std::string_view key);
  // None removes the key.
  void storeValue(const std::optional<Value>& value, std::string_view key);

  const std::shared_ptr<NSUserDefaults> userDefaults_;
  PreferencesStore& store_;
};

}  // namespace vornix
