#include <utility>

#include "analytics/AnalyticsParameter.h"
#include "analytics/HitComposer.h"
#include "analytics/HitType.h"
#include "analytics/VXAnalyticsTracker.h"

// Composition and delivery of hits.
namespace vornix {
namespace {

constexpr double kRequestTimeout = 60.0;

bool holdsText(const Dictionary& parameters, std::string_view key, std::string_view text) {
  const auto* value = parameters.find(key);
  return value != nullptr && *value == Value(text);
}

bool isSuppressed(const Dictionary& parameters) {
  const auto* value = parameters.find(AnalyticsParameter::ev);
  return value != nullptr && value->integerValue() < 0;
}

// None for a category that has no duplicate, and for one that is no text.
std::optional<std::string> categoryTarget(const Dictionary& parameters,
                                          const CategoryIdentifiers& identifiers) {
  const auto* value = parameters.find(AnalyticsParameter::ec);
  const auto* category = value == nullptr ? nullptr : value->as<std::string>();
  if (category == nullptr) return std::nullopt;
  const auto found = identifiers.find(*category);
  return found == identifiers.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

Dictionary VXAnalyticsTracker::filteredDictionaryForParameters(const Dictionary& parameters,
                                                               std::string_view hitType,
                                                               bool includeContentDescription) {
  AutomaticParameters automatic;
  if (includeContentDescription) {
    automatic.contentDescription = [this] { return contentDescription(); };
  }
  automatic.sessionIdentifier = [this] { return quillbaseSessionIdentifier(); };
  return filteredParameters(parameters, hitType, automatic);
}

std::optional<std::string> VXAnalyticsTracker::contentDescription() const {
  return modalScreens_.empty() ? currentScreen_ : modalScreens_.front();
}

HitOrigin VXAnalyticsTracker::originFor(std::string_view gaid) {
  return {.collectionHost = configuration_.get().collectionHost,
          .gaid = std::string(gaid),
          .applicationVersion = applicationVersion(),
          .clientIdentifier = cid()};
}

std::string VXAnalyticsTracker::baseURLStringForGAID(std::string_view gaid) {
  return baseUrl(originFor(gaid));
}

std::string VXAnalyticsTracker::requestStringForDictionary(const Dictionary& parameters,
                                                           std::string_view gaid) {
  return requestUrl(originFor(gaid), parameters, systemInfo());
}

std::string VXAnalyticsTracker::systemInfo() {
  return systemInfoText(services_.mainScreenSize, services_.mainWindowSize,
                        services_.preferredLanguages());
}

std::string VXAnalyticsTracker::userAgentString() {
  return userAgentText(applicationVersion(), services_.processInfo.operatingSystemVersion());
}

std::vector<std::string> VXAnalyticsTracker::targetsOf(const Dictionary& parameters) {
  std::vector<std::string> targets{analyticsGAID()};
  if (auto target = categoryTarget(parameters, additionalIdentifiers())) {
    targets.push_back(*std::move(target));
  } else if (additionalViewsIdentifier_ &&
             holdsText(parameters, kHitTypeParameter, HitType::appview)) {
    targets.push_back(*additionalViewsIdentifier_);
  }
  targets.push_back(analyticsBackupIdentifier());
  return targets;
}

void VXAnalyticsTracker::sendAnalyticsWithParameters(const Dictionary& parameters,
                                                     bool useSynchronousRequest) {
  if (!isEnabled() || isSuppressed(parameters)) return;
  for (const auto& gaid : targetsOf(parameters)) {
    HttpRequest request{.url = requestStringForDictionary(parameters, gaid),
                        .headers = {{"User-Agent", userAgentString()}},
                        .timeout = kRequestTimeout};
    if (useSynchronousRequest) {
      delivery().sendSynchronously(request);
    } else {
      delivery().enqueue(std::move(request));
    }
    debugEvent(parameters, gaid);
  }
}

void VXAnalyticsTracker::debugEvent(const Dictionary& parameters, std::string_view gaid) {
  if (!services_.userDefaults->boolForKey("ShowDebugMenu") ||
      !holdsText(parameters, kHitTypeParameter, HitType::event)) {
    return;
  }
  auto userInfo = parameters;
  userInfo.set("gaid", gaid);
  services_.notificationCenter.postNotification(
      {.name = "AnalyticsEvent", .object = shared_from_this(), .userInfo = std::move(userInfo)});
}

HitDelivery& VXAnalyticsTracker::delivery() {
  if (!delivery_) {
    delivery_ = std::make_unique<HitDelivery>(
        [make = services_.makeHttpClient, file = configuration_.get().certificateAuthorityFile] {
          return make(file);
        },
        services_.dispatchOnMainQueue);
  }
  return *delivery_;
}

const std::shared_ptr<VXBoolConditionalLock>& VXAnalyticsTracker::sendingLock() {
  return delivery().sendingLock();
}

void VXAnalyticsTracker::setSendingLock(std::shared_ptr<VXBoolConditionalLock> lock) {
  delivery().setSendingLock(std::move(lock));
}

const std::shared_ptr<NSOperationQueue>& VXAnalyticsTracker::connectionQueue() {
  return delivery().connectionQueue();
}

void VXAnalyticsTracker::setConnectionQueue(std::shared_ptr<NSOperationQueue> queue) {
  delivery().setConnectionQueue(std::move(queue));
}

}  // namespace vornix
