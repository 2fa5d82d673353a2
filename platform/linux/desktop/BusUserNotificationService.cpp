#include "platform/linux/desktop/BusUserNotificationService.h"

#include <cstdlib>
#include <utility>

#include "platform/linux/desktop/AgentBusPresence.h"
#include "platform/linux/desktop/BusNames.h"

namespace vornix {
namespace {

constexpr const char* kStartedByBus = "VORNIX_STARTED_BY_BUS";
constexpr double kSecondsToWaitForTheClick = 2;
// The bus has to start the notification centre first, perhaps on a machine that is just booting.
constexpr double kSecondsToStartTheCenter = 20;

BusMethod centerMethod(const char* member) {
  return {.destination = kNotificationCenterBusName,
          .path = kNotificationCenterPath,
          .interface = kNotificationCenterBusName,
          .member = member,
          .autoStart = false};
}

}  // namespace

BusUserNotificationService::BusUserNotificationService(SessionBus& bus,
                                                       std::shared_ptr<NSRunLoop> loop,
                                                       std::function<void()> endApplication)
    : bus_(bus),
      loop_(std::move(loop)),
      endApplication_(std::move(endApplication)),
      presence_(bus) {}

std::optional<NSError> BusUserNotificationService::deliver(const NSUserNotification& notification) {
  if (auto error = bus_.connect()) {
    return error;
  }
  if (handler_) {
    receiveClicks();
  }
  Dictionary content = dictionaryWithUserNotification(notification);
  content.set(UserNotificationKey::applicationIdentifier, kAgentBusName);
  BusMethod method = centerMethod("Deliver");
  method.autoStart = true;
  method.timeout = kSecondsToStartTheCenter;
  const auto write = [&content](BusMessage& call) { call.writeDictionary(content); };
  BusReply reply = bus_.call(method, write);
  // A centre on its way out takes nothing with it: the bus starts the next one.
  if (reply.error && reply.error->name == kBusErrorNoReply) {
    reply = bus_.call(method, write);
  }
  return reply.error
             ? std::optional(reply.error->asError("the notification centre does not answer"))
             : std::nullopt;
}

std::vector<NSUserNotification> BusUserNotificationService::displayedNotifications() {
  std::vector<NSUserNotification> displayed;
  BusReply reply = bus_.call(centerMethod("ListDisplayed"));
  if (!reply.succeeded() || !reply.message.enter('a', "a{sv}")) {
    return displayed;
  }
  while (const auto dictionary = reply.message.readDictionary()) {
    if (auto notification = userNotificationWithDictionary(*dictionary)) {
      displayed.push_back(std::move(*notification));
    }
  }
  return displayed;
}

void BusUserNotificationService::removeAllDisplayedNotifications() {
  static_cast<void>(bus_.call(centerMethod("RemoveAllDisplayed")));
}

void BusUserNotificationService::setActivationHandler(ActivationHandler handler) {
  handler_ = std::move(handler);
  if (!handler_) {
    presence_.disappear();
  }
}

// A second agent that cannot have the name goes on without: the first one takes the clicks.
void BusUserNotificationService::receiveClicks() {
  presence_.setClickHandler(
      [this](const NSUserNotification& notification, const std::string& token) {
        bus_.setActivationToken(token);
        const ActivationHandler handler = handler_;
        handler(notification);
      });
  presence_.appear();
}

std::optional<NSUserNotification> BusUserNotificationService::launchNotification() {
  if (std::getenv(kStartedByBus) == nullptr) {
    return std::nullopt;
  }
  unsetenv(kStartedByBus);
  std::optional<NSUserNotification> clicked;
  bool activated = false;
  presence_.setClickHandler([&](const NSUserNotification& notification, const std::string& token) {
    clicked = notification;
    bus_.setActivationToken(token);
    presence_.setClickHandler({});
  });
  presence_.setActivateHandler([&activated] { activated = true; });
  if (presence_.appear()) {
    loop_->runUntil([&] { return clicked || activated; }, kSecondsToWaitForTheClick);
  }
  // The next click must find no agent, so that the bus starts a fresh one.
  presence_.disappear();
  if (clicked) {
    presence_.becomeLatestInstance(endApplication_);
  }
  return clicked;
}

}  // namespace vornix
