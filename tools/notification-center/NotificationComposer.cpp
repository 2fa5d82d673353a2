#include "tools/notification-center/NotificationComposer.h"

#include <algorithm>
#include <string>

#include "platform/base/Text.h"
#include "platform/desktop/NSUserNotification.h"

namespace vornix {
namespace {

std::string textUnder(std::string_view key, const Dictionary& notification,
                      std::string_view otherwise) {
  const Value* value = notification.find(key);
  const auto* text = value != nullptr ? value->as<std::string>() : nullptr;
  return text != nullptr && !text->empty() ? *text : std::string(otherwise);
}

std::string escapedMarkup(std::string_view plain) {
  std::string escaped;
  for (const char character : plain) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

bool hasCapability(const NotificationServerDescription& server, std::string_view capability) {
  return std::ranges::find(server.capabilities, capability) != server.capabilities.end();
}

// These draw the body's action as one more button.
bool drawsBodyActionAsButton(const NotificationServerDescription& server) {
  return server.name == "Xfce Notify Daemon" || server.name == "lxqt-notificationd";
}

std::vector<NotificationAction> composeActions(const NSUserNotification& notification,
                                               const NotificationServerDescription& server) {
  std::vector<NotificationAction> actions;
  const auto add = [&actions](std::string_view key, const std::string& label) {
    if (!label.empty()) {
      actions.push_back({std::string(key), label});
    }
  };
  if (!drawsBodyActionAsButton(server)) {
    const bool named = !notification.actionButtonTitle.empty();
    add(NotificationActionKey::body, named ? notification.actionButtonTitle : notification.title);
  }
  if (notification.hasActionButton) {
    add(NotificationActionKey::launch, notification.actionButtonTitle);
  }
  add(NotificationActionKey::cancel, notification.otherButtonTitle);
  return actions;
}

}  // namespace

NotificationPost composePost(const Dictionary& notification,
                             const NotificationServerDescription& server) {
  const NSUserNotification content =
      userNotificationWithDictionary(notification).value_or(NSUserNotification{});
  const bool markup = hasCapability(server, "body-markup");
  return {.applicationName =
              textUnder(UserNotificationKey::applicationName, notification, text::productName),
          .desktopEntry = textUnder(UserNotificationKey::applicationIdentifier, notification, ""),
          .summary = content.title,
          .body = markup ? escapedMarkup(content.informativeText) : content.informativeText,
          .actions = composeActions(content, server)};
}

bool actionIsClick(std::string_view key) {
  return key == NotificationActionKey::body || key == NotificationActionKey::launch;
}

}  // namespace vornix
