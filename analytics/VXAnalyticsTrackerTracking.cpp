#include <algorithm>
#include <utility>

#include "analytics/AnalyticsParameter.h"
#include "analytics/HitType.h"
#include "analytics/VXAnalyticsTracker.h"
#include "platform/base/Format.h"

// What the rest of a program reports through.
namespace vornix {
namespace {

constexpr double kPrice = 39.95;
constexpr std::string_view kCurrency = "USD";
constexpr std::string_view kProduct = "Vornix3";

Dictionary transactionHit(const std::string& transaction) {
  return {{std::string(kHitTypeParameter), HitType::transaction},
          {"ti", transaction},
          {"tr", kPrice},
          {"cu", kCurrency}};
}

Dictionary itemHit(const std::string& transaction) {
  return {{std::string(kHitTypeParameter), HitType::item},
          {"ti", transaction},
          {"in", kProduct},
          {"ic", kProduct},
          {"ip", kPrice},
          {"iq", 1},
          {"cu", kCurrency}};
}

}  // namespace

void VXAnalyticsTracker::trackEventWithParameters(const Dictionary& parameters) {
  sendAnalyticsWithParameters(filteredDictionaryForParameters(parameters, HitType::event, true),
                              false);
}

void VXAnalyticsTracker::trackSynchronouslyEventWithParameters(const Dictionary& parameters) {
  sendAnalyticsWithParameters(filteredDictionaryForParameters(parameters, HitType::event, true),
                              true);
}

void VXAnalyticsTracker::trackTimingWithParameters(const Dictionary& parameters) {
  sendAnalyticsWithParameters(filteredDictionaryForParameters(parameters, HitType::timing, false),
                              false);
}

void VXAnalyticsTracker::trackPurchase() {
  const auto transaction = text::format("VNX3%@", userIdentifier());
  sendAnalyticsWithParameters(transactionHit(transaction), false);
  sendAnalyticsWithParameters(itemHit(transaction), false);
}

void VXAnalyticsTracker::sendView(const std::optional<std::string>& screenName) {
  sendAnalyticsWithParameters({{std::string(kHitTypeParameter), HitType::appview},
                               {std::string(AnalyticsParameter::cd), screenName.value_or("")}},
                              false);
}

void VXAnalyticsTracker::trackView(const std::optional<std::string>& screenName) {
  currentScreen_ = screenName;
  sendView(screenName);
}

void VXAnalyticsTracker::trackModalView(const std::optional<std::string>& screenName) {
  if (screenName) {
    if (std::ranges::find(modalScreens_, *screenName) != modalScreens_.end()) return;
    modalScreens_.insert(modalScreens_.begin(), *screenName);
  }
  sendView(screenName);
}

void VXAnalyticsTracker::switchToModalView(const std::optional<std::string>& screenName) {
  if (!screenName) return;
  if (modalScreens_.empty()) {
    modalScreens_.push_back(*screenName);
  } else {
    modalScreens_.front() = *screenName;
  }
}

void VXAnalyticsTracker::stopTrackingModalView() {
  if (modalScreens_.empty()) return;
  modalScreens_.erase(modalScreens_.begin());
  if (modalScreens_.empty()) trackView(std::optional(currentScreen_));
}

void VXAnalyticsTracker::duplicateEventsForCategory(const std::optional<std::string>& category,
                                                    const std::optional<std::string>& gaid) {
  if (category && gaid) additionalIdentifiers().insert_or_assign(*category, *gaid);
}

void VXAnalyticsTracker::stopDuplicatingEventsForCategory(std::string_view category) {
  auto& identifiers = additionalIdentifiers();
  const auto found = identifiers.find(category);
  if (found != identifiers.end()) identifiers.erase(found);
}

void VXAnalyticsTracker::duplicateViewsToGAID(std::optional<std::string> gaid) {
  setAdditionalViewsIdentifier(std::move(gaid));
}

void VXAnalyticsTracker::stopDuplicatingViews() {
  setAdditionalViewsIdentifier(std::nullopt);
}

}  // namespace vornix
