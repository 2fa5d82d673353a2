#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Value.h"

namespace vornix {

// A folder of resources with an "Info.plist" and one "LANG.lproj" folder a language. What is
// missing or unreadable counts as empty. Any thread.
class NSBundle {
 public:
  // `preferredLanguages`: tags, most preferred first. `info`: used instead of "Info.plist".
  NSBundle(std::string path, std::vector<std::string> preferredLanguages,
           std::optional<Dictionary> info = std::nullopt);

  // The running program's: "share/PROGRAM" beside the prefix of the executable. Never destroyed.
  [[nodiscard]] static const NSBundle& mainBundle();
  // The bundle at the path that `NSWorkspace` answers for an application. None when there is none.
  [[nodiscard]] static std::optional<Dictionary> infoDictionaryAtApplicationPath(
      std::string_view path);

  [[nodiscard]] const std::string& bundlePath() const { return path_; }
  // "CFBundleIdentifier"; none when it is missing.
  [[nodiscard]] std::optional<std::string> bundleIdentifier() const;
  [[nodiscard]] std::optional<Value> objectForInfoDictionaryKey(std::string_view key) const;

  // The text of the key in the table (empty: "Localizable") of the chosen language. A key that is
  // missing gives `value`, or the key itself where `value` is empty.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key, std::string_view value,
                                                  std::string_view table) const;

  // A property list (binary or XML) among the resources, by name with extension.
  [[nodiscard]] std::optional<Dictionary> propertyListNamed(std::string_view name) const;

 private:
  struct Cache;
  std::string path_;
  std::vector<std::string> preferredLanguages_;
  std::shared_ptr<Cache> cache_;
};

// The user's languages: "AppleLanguages" of the preferences where a file sets it, else those of the
// locale environment, else "en".
[[nodiscard]] std::vector<std::string> preferredLanguages();

}  // namespace vornix
