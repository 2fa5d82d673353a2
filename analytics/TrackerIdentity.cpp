#include "analytics/TrackerIdentity.h"

#include "analytics/NSWorkspace+Analytics.h"
#include "analytics/NSWorkspace+Identifiers.h"

namespace vornix {
namespace {

bool runsABeta(const NSBundle& bundle) {
  const auto version = bundle.objectForInfoDictionaryKey("CFBundleVersion");
  return version && isBetaVersion(version->description());
}

std::string chooseGaid(const NSUserDefaults& defaults,
                       Lazy<AnalyticsConfiguration>& configuration) {
  if (const auto custom = defaults.objectForKey("AnalyticsCustomGAID")) {
    return custom->description();
  }
  return defaults.boolForKey("AnalyticsUseDebugGAID") ? configuration.get().debugIdentifier
                                                      : configuration.get().productionIdentifier;
}

}  // namespace

TrackerIdentity::TrackerIdentity(const AnalyticsServices& services,
                                 Lazy<AnalyticsConfiguration>& configuration)
    : services_(services),
      cid_([this] { return userIdentifier(); }),
      isBeta_([&services] { return runsABeta(services.mainBundle); }),
      applicationVersion_([&services] {
        return vornix::applicationVersion(services.workspace, *services.abTester);
      }),
      analyticsGAID_([&services, &configuration] {
        return chooseGaid(*services.userDefaults, configuration);
      }) {}

std::string TrackerIdentity::userIdentifier() const {
  return vornix::userIdentifier(services_.workspace, services_.hardwareRegistry,
                                services_.processInfo);
}

std::optional<std::string> TrackerIdentity::quillbaseSessionIdentifier() {
  if (!quillbaseSessionIdentifier_) {
    quillbaseSessionIdentifier_ = services_.distributedPreferences->quillbaseSessionIdentifier();
  }
  return quillbaseSessionIdentifier_;
}

void TrackerIdentity::setQuillbaseSessionIdentifier(std::optional<std::string> identifier) {
  quillbaseSessionIdentifier_ = std::move(identifier);
}

}  // namespace vornix
