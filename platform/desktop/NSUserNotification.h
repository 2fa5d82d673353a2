#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/base/Value.h"

namespace vornix {

// One notification that the person sees.
struct NSUserNotification {
  std::string title;
  std::string informativeText;
  bool hasActionButton = true;
  std::string actionButtonTitle;
  std::string otherButtonTitle;

  friend bool operator==(const NSUserNotification&, const NSUserNotification&) = default;
};

// The entries by which a notification travels between processes. All are texts but for the
// boolean `hasActionButton`.
namespace UserNotificationKey {
inline constexpr std::string_view title = "title";
inline constexpr std::string_view informativeText = "informative-text";
inline constexpr std::string_view hasActionButton = "has-action-button";
inline constexpr std::string_view actionButtonTitle = "action-button-title";
inline constexpr std::string_view otherButtonTitle = "other-button-title";
inline constexpr std::string_view applicationName = "application-name";
inline constexpr std::string_view applicationIdentifier = "application-identifier";
}  // namespace UserNotificationKey

[[nodiscard]] Dictionary dictionaryWithUserNotification(const NSUserNotification& notification);
// A missing entry reads as empty, a missing `hasActionButton` as true. None without a title and
// without an informative text.
[[nodiscard]] std::optional<NSUserNotification> userNotificationWithDictionary(
    const Dictionary& dictionary);

}  // namespace vornix
