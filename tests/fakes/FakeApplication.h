#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/desktop/NSApplication.h"

namespace vornix::fakes {

// An application whose `terminate` does all but end the process, so that a test sees what its
// caller does next. A second end, which no real application has, is only counted.
class FakeApplication final : public NSApplication {
 public:
  explicit FakeApplication(PreferencesStore& preferences = sharedPreferencesStore())
      : NSApplication(preferences), preferences_(preferences) {}

  void terminate(const NSObject* sender) override {
    if (isTerminating_) return;
    ++terminations;
    lastSender = sender;
    if (whenTerminated) whenTerminated();
    if (terminations > 1) return;
    isTerminating_ = true;
    NSNotificationCenter::defaultCenter().postNotification(
        {.name = std::string(NSApplicationWillTerminateNotification),
         .object = weak_from_this().lock(),
         .userInfo = {}});
    preferences_.synchronizeAll();
    isTerminating_ = false;
  }

  int terminations = 0;
  const NSObject* lastSender = nullptr;
  std::function<void()> whenTerminated;

 private:
  PreferencesStore& preferences_;
  bool isTerminating_ = false;
};

}  // namespace vornix::fakes
