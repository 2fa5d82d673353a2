#include "platform/linux/desktop/AgentBusPresence.h"

#include <utility>

#include "platform/linux/desktop/BusNames.h"

namespace vornix {
namespace {

struct Click {
  NSUserNotification notification;
  std::string token;
};

std::optional<NSUserNotification> readParameter(BusMessage& arguments) {
  std::optional<NSUserNotification> notification;
  if (!arguments.enter('a', "v")) {
    return std::nullopt;
  }
  if (const auto parameter = arguments.readVariant()) {
    const auto* dictionary = parameter->as<Dictionary>();
    notification =
        dictionary != nullptr ? userNotificationWithDictionary(*dictionary) : std::nullopt;
  }
  while (arguments.readVariant()) {
  }
  arguments.leave();
  return notification;
}

std::optional<Click> readClick(BusMessage& arguments) {
  if (arguments.readString() != kClickAction) {
    return std::nullopt;
  }
  auto notification = readParameter(arguments);
  const auto platformData = arguments.readDictionary();
  if (!notification || !platformData) {
    return std::nullopt;
  }
  const Value* token = platformData->find("activation-token");
  const auto* text = token != nullptr ? token->as<std::string>() : nullptr;
  return Click{std::move(*notification), text != nullptr ? *text : std::string()};
}

}  // namespace

bool AgentBusPresence::appear() {
  if (object_ == nullptr) {
    object_ = bus_.exportObject(kAgentPath, kApplicationInterface, operations());
  }
  return object_ != nullptr && bus_.requestName(kAgentBusName, BusNameClaim::exclusive);
}

void AgentBusPresence::disappear() {
  clicked_ = nullptr;
  activated_ = nullptr;
  bus_.releaseName(kAgentBusName);
  bus_.processPending();
  for (BusCall& call : std::exchange(heldClicks_, {})) {
    call.refuse(kBusErrorNoReply, "This agent takes no clicks any more.");
  }
  object_.reset();
}

void AgentBusPresence::becomeLatestInstance(const std::function<void()>& ended) {
  lost_ = bus_.whenLost(ended);
  replaced_ = bus_.subscribe({.sender = kBusDaemonName,
                              .path = kBusDaemonPath,
                              .interface = kBusDaemonName,
                              .member = "NameLost",
                              .firstArgument = kAgentInstanceBusName},
                             [ended](const BusMessage&) { ended(); });
  static_cast<void>(bus_.requestName(kAgentInstanceBusName, BusNameClaim::replacing));
}

std::vector<BusOperation> AgentBusPresence::operations() {
  const auto activate = [this](BusCall call) {
    call.reply();
    if (activated_) {
      activated_();
    }
  };
  const auto open = [](BusCall call) {
    call.refuse("org.freedesktop.DBus.Error.NotSupported", "The agent opens no files.");
  };
  return {{.name = "Activate", .arguments = "a{sv}", .result = "", .handler = activate},
          {.name = "Open", .arguments = "asa{sv}", .result = "", .handler = open},
          {.name = "ActivateAction",
           .arguments = "sava{sv}",
           .result = "",
           .handler = [this](BusCall call) { activateAction(std::move(call)); }}};
}

void AgentBusPresence::activateAction(BusCall call) {
  const auto click = readClick(call.arguments());
  if (!click) {
    call.refuse(kBusErrorInvalidArguments, "There is no such action.");
    return;
  }
  if (!clicked_) {
    heldClicks_.push_back(std::move(call));
    return;
  }
  call.reply();
  bus_.flush();
  // The handler may take itself away.
  const ClickHandler handler = clicked_;
  handler(click->notification, click->token);
}

}  // namespace vornix
