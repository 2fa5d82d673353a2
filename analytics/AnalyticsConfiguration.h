#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// Event category to the identifier that its hits also go to.
using CategoryIdentifiers = std::map<std::string, std::string, std::less<>>;

// Where hits go. The values that stand here already reach nobody.
struct AnalyticsConfiguration {
  // Host or host:port.
  std::string collectionHost = "collect.invalid";
  std::string productionIdentifier = "UA-00000000-1";
  std::string debugIdentifier = "UA-00000000-2";
  std::string backupIdentifier = "UA-00000000-3";
  CategoryIdentifiers categoryIdentifiers{};
  // Trusted instead of the system's authorities; empty for the system's.
  std::string certificateAuthorityFile{};

  friend bool operator==(const AnalyticsConfiguration&, const AnalyticsConfiguration&) = default;
};

// Reads the property list "Analytics.plist" (none: there is none). An entry that is missing or
// cannot be used leaves the value above, and `complain` hears why; only "CertificateAuthorityFile"
// may be missing. Unknown entries are ignored.
[[nodiscard]] AnalyticsConfiguration analyticsConfigurationFromPropertyList(
    const std::optional<Dictionary>& propertyList,
    const std::function<void(std::string_view)>& complain);

}  // namespace vornix
