#include "platform/desktop/NSUserNotification.h"

namespace vornix {
namespace {

std::string textUnder(std::string_view key, const Dictionary& dictionary) {
  const Value* value = dictionary.find(key);
  const auto* text = value != nullptr ? value->as<std::string>() : nullptr;
  return text != nullptr ? *text : std::string();
}

}  // namespace

Dictionary dictionaryWithUserNotification(const NSUserNotification& notification) {
  return {{std::string(UserNotificationKey::title), notification.title},
          {std::string(UserNotificationKey::informativeText), notification.informativeText},
          {std::string(UserNotificationKey::hasActionButton), notification.hasActionButton},
          {std::string(UserNotificationKey::actionButtonTitle), notification.actionButtonTitle},
          {std::string(UserNotificationKey::otherButtonTitle), notification.otherButtonTitle}};
}

std::optional<NSUserNotification> userNotificationWithDictionary(const Dictionary& dictionary) {
  const Value* button = dictionary.find(UserNotificationKey::hasActionButton);
  NSUserNotification notification{
      .title = textUnder(UserNotificationKey::title, dictionary),
      .informativeText = textUnder(UserNotificationKey::informativeText, dictionary),
      .hasActionButton = button == nullptr || button->boolValue(),
      .actionButtonTitle = textUnder(UserNotificationKey::actionButtonTitle, dictionary),
      .otherButtonTitle = textUnder(UserNotificationKey::otherButtonTitle, dictionary)};
  if (notification.title.empty() && notification.informativeText.empty()) {
    return std::nullopt;
  }
  return notification;
}

}  // namespace vornix
