#include "platform/desktop/ActivationReceiver.h"

#include <utility>

#include "platform/linux/desktop/BusNames.h"

namespace vornix {
namespace {

void writeClick(BusMessage& call, const Dictionary& notification, std::string_view token) {
  call.writeString(kClickAction);
  call.open('a', "v");
  call.open('v', "a{sv}");
  call.writeDictionary(notification);
  call.close();
  call.close();
  Dictionary platformData;
  if (!token.empty()) {
    platformData.set("activation-token", token);
    platformData.set("desktop-startup-id", token);
  }
  call.writeDictionary(platformData);
}

class BusActivationReceiver final : public ActivationReceiver {
 public:
  explicit BusActivationReceiver(SessionBus& bus) : bus_(bus) {}

  void handOver(const Dictionary& notification, std::string_view token, Answer answer) override {
    // Without a time limit of ours, "no reply" means that the agent is gone and has not handled
    // the click; a busy one would else be asked twice.
    bus_.callAsync(
        {.destination = kAgentBusName,
         .path = kAgentPath,
         .interface = kApplicationInterface,
         .member = "ActivateAction",
         .timeout = kNoBusTimeout},
        [&](BusMessage& call) { writeClick(call, notification, token); },
        [answer = std::move(answer)](const BusReply& reply) {
          if (reply.succeeded()) {
            answer(HandOverOutcome::handedOver, "");
          } else {
            answer(reply.error->name == kBusErrorNoReply ? HandOverOutcome::noReply
                                                         : HandOverOutcome::failed,
                   reply.error->message);
          }
        });
  }

 private:
  SessionBus& bus_;
};

}  // namespace

ActivationReceiver& sharedActivationReceiver() {
  static auto& receiver = *new BusActivationReceiver(SessionBus::shared());
  return receiver;
}

}  // namespace vornix
