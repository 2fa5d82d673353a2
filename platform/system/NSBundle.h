#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Value.h"
#include "platform/system/ResourceFiles.h"

namespace vornix {

// A folder of resources with an "Info.plist" and one "LANG.lproj" folder a language. What is
// missing or unreadable counts as empty. Everything is read when it is first asked for, and once.
// Copies share what was read. Any thread.
class NSBundle {
 public:
  // `preferredLanguages`: tags, most preferred first. `info`: used instead of "Info.plist".
  // `files` must outlive the bundle.
  NSBundle(std::string path, std::vector<std::string> preferredLanguages,
           std::optional<Dictionary> info = std::nullopt,
           const ResourceFiles& files = sharedResourceFiles());

  // The running program's: "share/PROGRAM" beside the prefix of the executable, which stands in
  // "bin" or "libexec/vornix"; elsewhere the executable's folder. Never destroyed.
  [[nodiscard]] static const NSBundle& mainBundle();
  // The bundle at the path that `NSWorkspace` answers for an application. None when there is none.
  [[nodiscard]] static std::optional<Dictionary> infoDictionaryAtApplicationPath(
      std::string_view path);

  [[nodiscard]] const std::string& bundlePath() const;
  // "CFBundleIdentifier"; none when it is missing.
  [[nodiscard]] std::optional<std::string> bundleIdentifier() const;
  [[nodiscard]] std::optional<Value> objectForInfoDictionaryKey(std::string_view key) const;

  // The text of the key in the table (empty: "Localizable") of the chosen language: the first
  // preferred one that the bundle offers, with its region or without, else
  // "CFBundleDevelopmentRegion", else the first one found. A key that is missing gives `value`, or
  // the key itself where `value` is empty.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key, std::string_view value,
                                                  std::string_view table) const;

  // A property list (binary or XML) among the resources, by name with extension.
  [[nodiscard]] std::optional<Dictionary> propertyListNamed(std::string_view name) const;

 private:
  using Languages = std::function<std::vector<std::string>()>;
  class Contents;

  NSBundle(Languages preferredLanguages, std::string path, const ResourceFiles& files);

  std::shared_ptr<Contents> contents_;
};

// The bundle folder of the program whose executable has that path.
[[nodiscard]] std::string bundlePathOfExecutable(std::string_view executable);

// The user's languages: "AppleLanguages" of the preferences where a file sets it, else those of the
// locale environment, else "en".
[[nodiscard]] std::vector<std::string> preferredLanguages();

}  // namespace vornix
