#include "platform/desktop/AccessibilityStatus.h"

#include "platform/linux/bus/SessionBus.h"

namespace vornix {
namespace {

// Of a program that only tells what it knows.
constexpr double kPatience = 1;

class BusAccessibilityStatus final : public AccessibilityStatus {
 public:
  // A connection for each question: any thread may ask, and the shared one is the main thread's.
  [[nodiscard]] std::optional<bool> isScreenReaderEnabled() const override {
    SessionBus bus(NSRunLoop::currentRunLoop());
    const BusMethod get{.destination = "org.a11y.Bus",
                        .path = "/org/a11y/bus",
                        .interface = "org.freedesktop.DBus.Properties",
                        .member = "Get",
                        .timeout = kPatience,
                        .autoStart = false};
    BusReply reply = bus.call(get, [](BusMessage& message) {
      message.writeString("org.a11y.Status");
      message.writeString("ScreenReaderEnabled");
    });
    const auto value = reply.succeeded() ? reply.message.readVariant() : std::nullopt;
    const bool* const isEnabled = value ? value->as<bool>() : nullptr;
    return isEnabled != nullptr ? std::optional(*isEnabled) : std::nullopt;
  }
};

}  // namespace

const AccessibilityStatus& sharedAccessibilityStatus() {
  static const auto& status = *new BusAccessibilityStatus;
  return status;
}

}  // namespace vornix
