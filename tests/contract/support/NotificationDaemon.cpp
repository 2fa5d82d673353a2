#include "tests/contract/support/NotificationDaemon.h"

#include <stdexcept>

#include "platform/runloop/NSRunLoop.h"

namespace vornix::contract {
namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

}  // namespace

NotificationDaemon::NotificationDaemon(std::string name, std::vector<std::string> capabilities)
    : name_(std::move(name)),
      capabilities_(std::move(capabilities)),
      bus_(NSRunLoop::mainRunLoop()) {
  object_ = bus_.exportObject(kPath, kName, operations());
  if (!object_ || !bus_.requestName(kName, BusNameClaim::exclusive)) {
    throw std::runtime_error("no place for a notification server");
  }
}

std::vector<BusOperation> NotificationDaemon::operations() {
  const auto information = [this](BusCall call) {
    call.reply([this](BusMessage& answer) {
      for (const std::string& text :
           {name_, std::string("vendor"), std::string("1"), std::string("1.2")}) {
        answer.writeString(text);
      }
    });
  };
  const auto capabilities = [this](BusCall call) {
    call.reply([this](BusMessage& answer) { answer.writeStrings(capabilities_); });
  };
  const auto close = [this](BusCall call) {
    const auto identifier = call.arguments().readUint32().value_or(0);
    closed.push_back(identifier);
    shown.erase(identifier);
    call.reply();
  };
  return {{"GetServerInformation", "", "ssss", information},
          {"GetCapabilities", "", "as", capabilities},
          {"Notify", "susssasa{sv}i", "u", [this](BusCall call) { notify(std::move(call)); }},
          {"CloseNotification", "u", "", close}};
}

void NotificationDaemon::notify(BusCall call) {
  if (!refusals.empty()) {
    call.refuse(refusals.front(), "not now");
    refusals.erase(refusals.begin());
    return;
  }
  BusMessage& arguments = call.arguments();
  Shown one;
  one.applicationName = arguments.readString().value_or("");
  one.replaces = arguments.readUint32().value_or(1);
  static_cast<void>(arguments.readString());
  one.summary = arguments.readString().value_or("");
  one.body = arguments.readString().value_or("");
  one.actions = arguments.readStrings().value_or(std::vector<std::string>{});
  one.hints = arguments.readDictionary().value_or(Dictionary{});
  one.timeout = arguments.readInt32().value_or(-1);
  shown[++lastIdentifier_] = one;
  call.reply([this](BusMessage& answer) { answer.writeUint32(lastIdentifier_); });
}

void NotificationDaemon::emit(const std::string& member, std::uint32_t identifier,
                              const SessionBus::Writer& rest) {
  static_cast<void>(bus_.emitSignal(kPath, kName, member, [&](BusMessage& signal) {
    signal.writeUint32(identifier);
    rest(signal);
  }));
}

void NotificationDaemon::act(std::uint32_t identifier, const std::string& key,
                             const std::string& token) {
  if (!token.empty()) {
    emit("ActivationToken", identifier, [&](BusMessage& signal) { signal.writeString(token); });
  }
  emit("ActionInvoked", identifier, [&](BusMessage& signal) { signal.writeString(key); });
}

void NotificationDaemon::end(std::uint32_t identifier) {
  shown.erase(identifier);
  emit("NotificationClosed", identifier, [](BusMessage& signal) { signal.writeUint32(2); });
}

}  // namespace vornix::contract
