#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/desktop/NSUserNotification.h"
#include "tests/fakes/FakeActivationReceiver.h"
#include "tests/fakes/FakeNotificationServer.h"
#include "tools/notification-center/NotificationKeeper.h"

namespace vornix::tests {

// A keeper between a fake server, a fake application and a clock that moves when told.
class KeeperFixture : public testing::Test {
 protected:
  static constexpr const char* kServer = ":1.5";

  KeeperFixture() {
    setDiagnosticReceiver(
        [this](std::string_view line) { diagnostics.emplace_back(std::string(line)); });
  }
  ~KeeperFixture() override { setDiagnosticReceiver({}); }

  static Dictionary reminder(const std::string& title = "Time to clean up") {
    return dictionaryWithUserNotification({.title = title,
                                           .informativeText = "Scan now",
                                           .hasActionButton = true,
                                           .actionButtonTitle = "Launch",
                                           .otherButtonTitle = "Cancel"});
  }

  // Time passes; what falls due is run in order, what it asks for included.
  void pass(double seconds) {
    const double end = now + seconds;
    while (true) {
      const auto next = std::ranges::min_element(timers, {}, &Timer::date);
      if (next == timers.end() || next->date > end) {
        break;
      }
      const auto block = std::move(next->block);
      now = next->date;
      timers.erase(next);
      block();
    }
    now = end;
  }

  // Shows one reminder on a server that was there first; answers its identifier.
  std::uint32_t show(const Dictionary& notification = reminder()) {
    server.owner = kServer;
    keeper.deliver(notification);
    server.answerAll();
    return server.posted.back().identifier;
  }

  struct Timer {
    double date;
    std::function<void()> block;
  };

  double now = 0;
  std::vector<Timer> timers;
  std::vector<std::string> diagnostics;
  int idleCalls = 0;
  fakes::FakeNotificationServer server;
  fakes::FakeActivationReceiver receiver;
  NotificationKeeper keeper{server, receiver,
                            [this](double seconds, std::function<void()> block) {
                              timers.push_back({now + seconds, std::move(block)});
                            },
                            [this] { ++idleCalls; }};
};

}  // namespace vornix::tests
