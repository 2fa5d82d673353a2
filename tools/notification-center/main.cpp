#include <memory>
#include <optional>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/desktop/ActivationReceiver.h"
#include "platform/desktop/NotificationCenterPort.h"
#include "platform/desktop/NotificationServer.h"
#include "platform/desktop/ProcessLifetime.h"
#include "platform/runloop/NSRunLoop.h"
#include "tools/notification-center/NotificationKeeper.h"

namespace vornix {
namespace {

// Ends the keeping when that was requested from outside. The request wakes the loop, which then
// asks every source.
class TerminationSource final : public RunLoopSource {
 public:
  explicit TerminationSource(std::function<void()> end) : end_(std::move(end)) {}

  [[nodiscard]] WaitHandle handle() const override { return {}; }
  [[nodiscard]] std::optional<double> timeout() const override {
    return terminationWasRequested() ? std::optional(0.0) : std::nullopt;
  }
  void perform() override {
    if (terminationWasRequested()) {
      end_();
    }
  }

 private:
  std::function<void()> end_;
};

int keepNotifications() {
  const auto loop = NSRunLoop::mainRunLoop();
  NotificationCenterPort& port = sharedNotificationCenterPort();
  NotificationKeeper* keeping = nullptr;

  // A request may arrive at the last moment, so the address goes first.
  const auto leaveWhenIdle = [&] {
    port.close();
    if (keeping->isIdle() || !port.reopen()) {
      loop->stop();
    }
  };
  NotificationKeeper keeper(
      sharedNotificationServer(), sharedActivationReceiver(),
      [&loop](double seconds, std::function<void()> block) {
        loop->performAfterDelay(std::move(block), seconds);
      },
      leaveWhenIdle);
  keeping = &keeper;

  if (!port.open(keeper, [&loop] { loop->stop(); })) {
    reportDiagnostic(
        "The notification centre cannot be reached by anyone: there is no session message bus, or "
        "another centre is running");
    return 1;
  }
  watchTerminationRequests(loop->eventWaiter());
  // Without us a click on a notification would reach nobody, so none is left behind.
  loop->addSource(std::make_shared<TerminationSource>([&] {
    keeper.removeAllDisplayed();
    port.flush();
    loop->stop();
  }));
  loop->run();
  return 0;
}

}  // namespace
}  // namespace vornix

int main() {
  return vornix::keepNotifications();
}
