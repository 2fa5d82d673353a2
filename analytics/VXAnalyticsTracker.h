#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analytics/AnalyticsServices.h"
#include "analytics/HitComposer.h"
#include "analytics/HitDelivery.h"
#include "analytics/TrackerIdentity.h"
#include "platform/base/NSObject.h"

namespace vornix {

// Reports what happens in a program to the collection host. Failures are silent. Main thread, but
// for `defaultTracker` and `create`; queued hits advance only while the main run loop turns.
class VXAnalyticsTracker : public NSObject {
 public:
  // The process's tracker, made when first asked for. Never null, never destroyed. Any thread.
  [[nodiscard]] static std::shared_ptr<VXAnalyticsTracker> defaultTracker();
  // Makes the process's tracker from these services, or answers it where it exists. Any thread.
  [[nodiscard]] static std::shared_ptr<VXAnalyticsTracker> create(AnalyticsServices services);
  ~VXAnalyticsTracker() override;

  // Reporting. Parameters are keyed by `AnalyticsParameter`; a null object keeps a parameter out
  // of the hit, a negative "ev" suppresses the hit.

  void trackEventWithParameters(const Dictionary& parameters);
  // Returns when the requests are over: up to 60 seconds for each identifier.
  void trackSynchronouslyEventWithParameters(const Dictionary& parameters);
  void trackTimingWithParameters(const Dictionary& parameters);
  void trackPurchase();
  void trackView(const std::optional<std::string>& screenName);
  // A screen above the others; nothing when it is open already. None is reported, but not opened.
  void trackModalView(const std::optional<std::string>& screenName);
  // Replaces the newest modal screen without a report; none has no effect.
  void switchToModalView(const std::optional<std::string>& screenName);
  // Closes the newest modal screen; the last one reveals `currentScreen`, which is reported again.
  void stopTrackingModalView();

  // Routing. With a nil argument nothing changes.
  void duplicateEventsForCategory(const std::optional<std::string>& category,
                                  const std::optional<std::string>& gaid);
  void stopDuplicatingEventsForCategory(std::string_view category);
  void duplicateViewsToGAID(std::optional<std::string> gaid);
  void stopDuplicatingViews();

  // Composition of one hit.

  [[nodiscard]] Dictionary filteredDictionaryForParameters(const Dictionary& parameters,
                                                           std::string_view hitType,
                                                           bool includeContentDescription);
  // The newest modal screen, else the current one.
  [[nodiscard]] std::optional<std::string> contentDescription() const;
  [[nodiscard]] std::string baseURLStringForGAID(std::string_view gaid);
  [[nodiscard]] std::string systemInfo();
  [[nodiscard]] std::string userAgentString();
  [[nodiscard]] std::string requestStringForDictionary(const Dictionary& parameters,
                                                       std::string_view gaid);

  // Delivery. Sends to the main identifier, at most one duplicate, and the backup identifier.
  void sendAnalyticsWithParameters(const Dictionary& parameters, bool useSynchronousRequest);
  // Posts the local notification "AnalyticsEvent" for an event where "ShowDebugMenu" is set.
  void debugEvent(const Dictionary& parameters, std::string_view gaid);

  // Identity, as `TrackerIdentity` computes it.

  [[nodiscard]] bool isBeta() { return identity_.isBeta(); }
  [[nodiscard]] std::string userIdentifier() const { return identity_.userIdentifier(); }
  [[nodiscard]] const std::string& cid() { return identity_.cid(); }
  void setCid(std::string cid) { identity_.setCid(std::move(cid)); }
  [[nodiscard]] const std::string& applicationVersion() { return identity_.applicationVersion(); }
  void setApplicationVersion(std::optional<std::string> version);
  [[nodiscard]] const std::string& analyticsGAID() { return identity_.analyticsGAID(); }
  void setAnalyticsGAID(std::optional<std::string> gaid);
  [[nodiscard]] std::optional<std::string> quillbaseSessionIdentifier();
  void setQuillbaseSessionIdentifier(std::optional<std::string> identifier);

  // State.

  // False: nothing is sent. Read from "SUSendProfileInfo" once, when the tracker is made.
  [[nodiscard]] bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }
  [[nodiscard]] const std::string& analyticsBackupIdentifier();
  void setAnalyticsBackupIdentifier(std::string gaid) { backupIdentifier_ = std::move(gaid); }
  [[nodiscard]] CategoryIdentifiers& additionalIdentifiers();
  void setAdditionalIdentifiers(CategoryIdentifiers identifiers);
  [[nodiscard]] const std::optional<std::string>& additionalViewsIdentifier() const;
  void setAdditionalViewsIdentifier(std::optional<std::string> gaid);
  // When launching had finished; none before.
  [[nodiscard]] std::optional<Date> launchDate() const { return launchDate_; }
  void setLaunchDate(std::optional<Date> date) { launchDate_ = date; }
  [[nodiscard]] const std::shared_ptr<NSObject>& currentController() const { return controller_; }
  void setCurrentController(std::shared_ptr<NSObject> controller);
  [[nodiscard]] const std::shared_ptr<NSObject>& currentState() const { return state_; }
  void setCurrentState(std::shared_ptr<NSObject> state) { state_ = std::move(state); }
  [[nodiscard]] const std::optional<std::string>& currentScreen() const { return currentScreen_; }
  void setCurrentScreen(std::optional<std::string> name) { currentScreen_ = std::move(name); }
  // Newest first.
  [[nodiscard]] std::vector<std::string>& modalScreens() { return modalScreens_; }
  void setModalScreens(std::vector<std::string> names) { modalScreens_ = std::move(names); }
  [[nodiscard]] const std::shared_ptr<VXBoolConditionalLock>& sendingLock();
  void setSendingLock(std::shared_ptr<VXBoolConditionalLock> lock);
  [[nodiscard]] const std::shared_ptr<NSOperationQueue>& connectionQueue();
  void setConnectionQueue(std::shared_ptr<NSOperationQueue> queue);

  void didFinishLaunching(const NSNotification& notification);
  void observeValueForKeyPath(std::string_view keyPath, NSObject& object) override;
  [[nodiscard]] std::string_view className() const override { return "VXAnalyticsTracker"; }

 protected:
  explicit VXAnalyticsTracker(AnalyticsServices services);
  // The part of the making that needs the finished object. Once.
  void setUp();

 private:
  [[nodiscard]] HitDelivery& delivery();
  [[nodiscard]] std::vector<std::string> targetsOf(const Dictionary& parameters);
  [[nodiscard]] HitOrigin originFor(std::string_view gaid);
  void sendView(const std::optional<std::string>& screenName);

  AnalyticsServices services_;
  Lazy<AnalyticsConfiguration> configuration_;
  TrackerIdentity identity_;
  bool enabled_ = false;
  std::optional<CategoryIdentifiers> additionalIdentifiers_;
  std::optional<std::string> additionalViewsIdentifier_;
  std::optional<std::string> backupIdentifier_;
  std::optional<Date> launchDate_;
  std::shared_ptr<NSObject> controller_;
  std::shared_ptr<NSObject> state_;
  std::optional<std::string> currentScreen_;
  std::vector<std::string> modalScreens_;
  NSNotificationCenter::ObserverToken launchObserver_;
  std::unique_ptr<HitDelivery> delivery_;
};

}  // namespace vornix
