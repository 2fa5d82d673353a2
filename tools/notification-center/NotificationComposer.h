#pragma once

#include <string_view>

#include "platform/base/Value.h"
#include "platform/desktop/NotificationServer.h"

namespace vornix {

// Keys of the buttons at the server.
namespace NotificationActionKey {
inline constexpr std::string_view body = "default";
inline constexpr std::string_view launch = "launch";
inline constexpr std::string_view cancel = "cancel";
}  // namespace NotificationActionKey

// What this server must be asked so that it shows the notification as it is meant.
[[nodiscard]] NotificationPost composePost(const Dictionary& notification,
                                           const NotificationServerDescription& server);

// True for the actions that count as a click, false for "cancel" and anything unknown.
[[nodiscard]] bool actionIsClick(std::string_view key);

}  // namespace vornix
