#include "analytics/NSWorkspace+Analytics.h"

#include "analytics/HostTexts.h"
#include "platform/base/Text.h"
#include "platform/desktop/NSScreen.h"
#include "platform/system/NSBundle.h"
#include "platform/system/NSProcessInfo.h"

namespace vornix {
namespace {

constexpr std::string_view kMainApplication = "com.orvane.Vornix3";

std::optional<std::string> bundleVersionOfMainApplication(NSWorkspace& workspace) {
  const auto path = workspace.absolutePathForAppBundleWithIdentifier(kMainApplication);
  if (!path) return std::nullopt;
  const auto info = NSBundle::infoDictionaryAtApplicationPath(*path);
  const auto* version = info ? info->find("CFBundleVersion") : nullptr;
  return version == nullptr ? std::nullopt : std::optional(version->description());
}

}  // namespace

std::string applicationName(const NSWorkspace& /*self*/) {
  return std::string(text::productName);
}

std::string applicationVersion(NSWorkspace& self, VXABTester& tester) {
  auto version = bundleVersionOfMainApplication(self).value_or("Unknown");
  const auto variants = tester.humanReadableValues();
  if (!variants.empty()) version += "-" + variants;
  return version;
}

std::string userAgentString(NSWorkspace& self) {
  return userAgentText(applicationVersion(self),
                       NSProcessInfo::processInfo().operatingSystemVersion());
}

std::string systemInfo(const NSWorkspace& /*self*/) {
  return systemInfoText([] { return NSScreen::screens().mainScreenSize(); }, noWindow,
                        preferredLanguages());
}

}  // namespace vornix
