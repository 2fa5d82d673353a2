#include "platform/desktop/NotificationCenterPort.h"

#include <string>
#include <utility>

#include "platform/linux/desktop/BusNames.h"

namespace vornix {
namespace {

void writeNotifications(BusMessage& answer, const std::vector<Dictionary>& notifications) {
  answer.open('a', "a{sv}");
  for (const Dictionary& notification : notifications) {
    answer.writeDictionary(notification);
  }
  answer.close();
}

class BusNotificationCenterPort final : public NotificationCenterPort {
 public:
  explicit BusNotificationCenterPort(SessionBus& bus) : bus_(bus) {}

  bool open(NotificationRequests& requests, std::function<void()> lost) override {
    if (bus_.connect()) {
      return false;
    }
    lost_ = bus_.whenLost(std::move(lost));
    object_ = bus_.exportObject(kNotificationCenterPath, kNotificationCenterBusName,
                                operations(requests));
    return object_ != nullptr && reopen();
  }

  void close() override {
    bus_.releaseName(kNotificationCenterBusName);
    bus_.processPending();
  }

  bool reopen() override {
    return bus_.requestName(kNotificationCenterBusName, BusNameClaim::exclusive);
  }

  void flush() override { bus_.flush(); }

 private:
  static std::vector<BusOperation> operations(NotificationRequests& requests) {
    return {{.name = "Deliver",
             .arguments = "a{sv}",
             .result = "",
             .handler = [&requests](BusCall call) { deliver(requests, std::move(call)); }},
            {.name = "ListDisplayed",
             .arguments = "",
             .result = "aa{sv}",
             .handler =
                 [&requests](BusCall call) {
                   call.reply([&requests](BusMessage& answer) {
                     writeNotifications(answer, requests.displayed());
                   });
                 }},
            {.name = "RemoveAllDisplayed",
             .arguments = "",
             .result = "",
             .handler = [&requests](BusCall call) {
               requests.removeAllDisplayed();
               call.reply();
             }}};
  }

  static void deliver(NotificationRequests& requests, BusCall call) {
    if (requests.deliver(call.arguments().readDictionary().value_or(Dictionary{}))) {
      call.reply();
    } else {
      call.refuse(kBusErrorInvalidArguments, "A notification needs a title or a text.");
    }
  }

  SessionBus& bus_;
  BusRegistration lost_;
  BusRegistration object_;
};

}  // namespace

NotificationCenterPort& sharedNotificationCenterPort() {
  static auto& port = *new BusNotificationCenterPort(SessionBus::shared());
  return port;
}

}  // namespace vornix
