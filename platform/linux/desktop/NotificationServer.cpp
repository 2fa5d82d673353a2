#include "platform/desktop/NotificationServer.h"

#include <utility>

#include "platform/linux/desktop/BusNames.h"
#include "platform/linux/desktop/InstalledIcon.h"

namespace vornix {
namespace {

constexpr const char* kServerName = "org.freedesktop.Notifications";
constexpr const char* kServerPath = "/org/freedesktop/Notifications";
constexpr std::string_view kRepeated =
    "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";
constexpr std::uint32_t kReplacesNothing = 0;
constexpr std::int32_t kUntilThePersonActs = 0;
constexpr std::uint8_t kNormalUrgency = 1;

void writePost(BusMessage& message, const NotificationPost& notification) {
  message.writeString(notification.applicationName);
  message.writeUint32(kReplacesNothing);
  message.writeString(installedIcon(notification.desktopEntry));
  message.writeString(notification.summary);
  message.writeString(notification.body);
  std::vector<std::string> actions;
  for (const NotificationAction& action : notification.actions) {
    actions.push_back(action.key);
    actions.push_back(action.label);
  }
  message.writeStrings(actions);
  message.open('a', "{sv}");
  message.open('e', "sv");
  message.writeString("urgency");
  message.open('v', "y");
  message.writeByte(kNormalUrgency);
  message.close();
  message.close();
  message.open('e', "sv");
  message.writeString("desktop-entry");
  message.writeVariantString(notification.desktopEntry);
  message.close();
  message.close();
  message.writeInt32(kUntilThePersonActs);
}

bool meansServerGone(const BusError& error) {
  return error.name == kBusErrorNoReply ||
         error.name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
         error.name == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
         error.name == "org.freedesktop.DBus.Error.Disconnected";
}

PostResult resultOf(BusReply reply) {
  if (!reply.error) {
    const auto identifier = reply.message.readUint32();
    return identifier ? PostResult{PostOutcome::shown, *identifier, {}}
                      : PostResult{PostOutcome::refused, 0, "its answer makes no sense"};
  }
  if (meansServerGone(*reply.error)) {
    return {PostOutcome::serverGone, 0, reply.error->message};
  }
  const bool repeated = reply.error->name == kRepeated;
  return {repeated ? PostOutcome::repeatedTooSoon : PostOutcome::refused, 0, reply.error->message};
}

BusMethod serverMethod(std::string_view owner, const char* member) {
  return {.destination = std::string(owner),
          .path = kServerPath,
          .interface = kServerName,
          .member = member,
          .timeout = kNoBusTimeout,
          .autoStart = false};
}

BusMethod daemonMethod(const char* member) {
  return {.destination = kBusDaemonName,
          .path = kBusDaemonPath,
          .interface = kBusDaemonName,
          .member = member,
          .timeout = kNoBusTimeout};
}

class BusNotificationServer final : public NotificationServer {
 public:
  explicit BusNotificationServer(SessionBus& bus) : bus_(bus) {}

  void setObserver(NotificationServerObserver* observer) override {
    observer_ = observer;
    registrations_.clear();
    if (observer_ != nullptr) {
      listen();
    }
  }

  void findOwner(std::function<void(std::string_view)> answer) override {
    bus_.callAsync(
        daemonMethod("GetNameOwner"), [](BusMessage& call) { call.writeString(kServerName); },
        [answer = std::move(answer)](BusReply reply) {
          answer(reply.succeeded() ? reply.message.readString().value_or("") : "");
        });
  }

  void start() override {
    bus_.callAsync(
        daemonMethod("StartServiceByName"),
        [](BusMessage& call) {
          call.writeString(kServerName);
          call.writeUint32(0);
        },
        [](const BusReply&) {});
  }

  void describe(
      std::string_view owner,
      std::function<void(const std::optional<NotificationServerDescription>&)> answer) override {
    bus_.callAsync(serverMethod(owner, "GetServerInformation"), {},
                   [this, owner = std::string(owner), answer = std::move(answer)](BusReply reply) {
                     NotificationServerDescription description;
                     if (reply.succeeded()) {
                       description.name = reply.message.readString().value_or("");
                     }
                     askCapabilities(owner, std::move(description), answer);
                   });
  }

  void post(std::string_view owner, const NotificationPost& notification,
            std::function<void(const PostResult&)> answer) override {
    bus_.callAsync(
        serverMethod(owner, "Notify"),
        [&notification](BusMessage& call) { writePost(call, notification); },
        [answer = std::move(answer)](BusReply reply) { answer(resultOf(std::move(reply))); });
  }

  void close(std::string_view owner, std::uint32_t identifier) override {
    bus_.callAsync(
        serverMethod(owner, "CloseNotification"),
        [identifier](BusMessage& call) { call.writeUint32(identifier); }, [](const BusReply&) {});
  }

 private:
  void askCapabilities(
      const std::string& owner, NotificationServerDescription description,
      std::function<void(const std::optional<NotificationServerDescription>&)> answer) {
    bus_.callAsync(
        serverMethod(owner, "GetCapabilities"), {},
        [description = std::move(description), answer = std::move(answer)](BusReply reply) mutable {
          if (!reply.succeeded()) {
            answer(std::nullopt);
            return;
          }
          description.capabilities =
              reply.message.readStrings().value_or(std::vector<std::string>{});
          answer(description);
        });
  }

  void listen() {
    registrations_.push_back(bus_.subscribe({.sender = kBusDaemonName,
                                             .path = kBusDaemonPath,
                                             .interface = kBusDaemonName,
                                             .member = "NameOwnerChanged",
                                             .firstArgument = kServerName},
                                            [this](BusMessage& signal) { ownerChanged(signal); }));
    listenToServer("ActivationToken", [this](BusMessage& signal, std::uint32_t identifier) {
      observer_->activationTokenArrived(signal.sender(), identifier,
                                        signal.readString().value_or(""));
    });
    listenToServer("ActionInvoked", [this](BusMessage& signal, std::uint32_t identifier) {
      observer_->actionInvoked(signal.sender(), identifier, signal.readString().value_or(""));
    });
    listenToServer("NotificationClosed", [this](BusMessage& signal, std::uint32_t identifier) {
      observer_->notificationClosed(signal.sender(), identifier);
    });
  }

  // The sender is not part of the rule: who owns the name is ours to judge, message by message.
  void listenToServer(const char* member,
                      std::function<void(BusMessage&, std::uint32_t identifier)> handler) {
    registrations_.push_back(
        bus_.subscribe({.path = kServerPath, .interface = kServerName, .member = member},
                       [handler = std::move(handler)](BusMessage& signal) {
                         if (const auto identifier = signal.readUint32()) {
                           handler(signal, *identifier);
                         }
                       }));
  }

  void ownerChanged(BusMessage& signal) {
    const auto name = signal.readString();
    const auto oldOwner = signal.readString();
    const auto newOwner = signal.readString();
    if (name && oldOwner && newOwner) {
      observer_->ownerChanged(*newOwner);
    }
  }

  SessionBus& bus_;
  NotificationServerObserver* observer_ = nullptr;
  std::vector<BusRegistration> registrations_;
};

}  // namespace

NotificationServer& sharedNotificationServer() {
  static auto& server = *new BusNotificationServer(SessionBus::shared());
  return server;
}

}  // namespace vornix
