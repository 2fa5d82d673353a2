#include "analytics/VXAnalyticsTracker.h"

#include <utility>

#include "platform/base/Mutex.h"
#include "settings/PreferenceKey.h"

namespace vornix {
namespace {

// Recursive, since the making of the tracker may ask for it.
struct SharedTracker {
  RecursiveMutex mutex;
  std::shared_ptr<VXAnalyticsTracker> tracker VORNIX_GUARDED_BY(mutex);
};

SharedTracker& sharedTracker() {
  static auto& shared = *new SharedTracker;
  return shared;
}

}  // namespace

std::shared_ptr<VXAnalyticsTracker> VXAnalyticsTracker::defaultTracker() {
  auto& shared = sharedTracker();
  const Lock lock(shared.mutex);
  return shared.tracker ? shared.tracker : create(processAnalyticsServices());
}

std::shared_ptr<VXAnalyticsTracker> VXAnalyticsTracker::create(AnalyticsServices services) {
  auto& shared = sharedTracker();
  const Lock lock(shared.mutex);
  if (shared.tracker) return shared.tracker;
  shared.tracker = std::shared_ptr<VXAnalyticsTracker>(new VXAnalyticsTracker(std::move(services)));
  shared.tracker->setUp();
  return shared.tracker;
}

VXAnalyticsTracker::VXAnalyticsTracker(AnalyticsServices services)
    : services_(std::move(services)),
      configuration_(services_.loadConfiguration),
      identity_(services_, configuration_) {}

VXAnalyticsTracker::~VXAnalyticsTracker() {
  services_.abTester->removeObserver(*this, VXABTester::humanReadableValuesKey);
  services_.notificationCenter.removeObserver(launchObserver_);
}

void VXAnalyticsTracker::setUp() {
  const std::weak_ptr<NSObject> weak = shared_from_this();
  launchObserver_ =
      services_.notificationCenter.addObserver(NSApplicationDidFinishLaunchingNotification,
                                               [this, weak](const NSNotification& notification) {
                                                 if (const auto alive = weak.lock())
                                                   didFinishLaunching(notification);
                                               });
  services_.abTester->addObserver(shared_from_this(), VXABTester::humanReadableValuesKey);
  services_.userDefaults->registerDefaults({{std::string(PreferenceKey::SUSendProfileInfo), true}});
  services_.userDefaults->addSuiteNamed(VXDistributedPreferences::applicationID);
  enabled_ = services_.userDefaults->boolForKey(PreferenceKey::SUSendProfileInfo);
}

void VXAnalyticsTracker::didFinishLaunching(const NSNotification& /*notification*/) {
  launchDate_ = services_.clock.now();
}

void VXAnalyticsTracker::observeValueForKeyPath(std::string_view keyPath, NSObject& /*object*/) {
  if (keyPath == VXABTester::humanReadableValuesKey) setApplicationVersion(std::nullopt);
}

void VXAnalyticsTracker::setApplicationVersion(std::optional<std::string> version) {
  identity_.setApplicationVersion(std::move(version));
}

void VXAnalyticsTracker::setAnalyticsGAID(std::optional<std::string> gaid) {
  identity_.setAnalyticsGAID(std::move(gaid));
}

std::optional<std::string> VXAnalyticsTracker::quillbaseSessionIdentifier() {
  return identity_.quillbaseSessionIdentifier();
}

void VXAnalyticsTracker::setQuillbaseSessionIdentifier(std::optional<std::string> identifier) {
  identity_.setQuillbaseSessionIdentifier(std::move(identifier));
}

const std::string& VXAnalyticsTracker::analyticsBackupIdentifier() {
  if (!backupIdentifier_) backupIdentifier_ = configuration_.get().backupIdentifier;
  return *backupIdentifier_;
}

CategoryIdentifiers& VXAnalyticsTracker::additionalIdentifiers() {
  if (!additionalIdentifiers_) additionalIdentifiers_ = configuration_.get().categoryIdentifiers;
  return *additionalIdentifiers_;
}

void VXAnalyticsTracker::setAdditionalIdentifiers(CategoryIdentifiers identifiers) {
  additionalIdentifiers_ = std::move(identifiers);
}

const std::optional<std::string>& VXAnalyticsTracker::additionalViewsIdentifier() const {
  return additionalViewsIdentifier_;
}

void VXAnalyticsTracker::setAdditionalViewsIdentifier(std::optional<std::string> gaid) {
  additionalViewsIdentifier_ = std::move(gaid);
}

void VXAnalyticsTracker::setCurrentController(std::shared_ptr<NSObject> controller) {
  controller_ = std::move(controller);
}

}  // namespace vornix
