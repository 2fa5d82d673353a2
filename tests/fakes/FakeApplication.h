#pragma once

#include "platform/desktop/NSApplication.h"

namespace vornix::fakes {

// An application whose `terminate` returns, so that a test sees what its caller does next.
class FakeApplication final : public NSApplication {
 public:
  void terminate(const NSObject* sender) override {
    ++terminations;
    lastSender = sender;
  }

  int terminations = 0;
  const NSObject* lastSender = nullptr;
};

}  // namespace vornix::fakes
