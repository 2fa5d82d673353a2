#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "agent/AppDelegate.h"
#include "tests/fakes/FakeApplication.h"
#include "tests/fakes/FakeApplicationService.h"
#include "tests/fakes/FakeEventWaiter.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/FakeSystemClock.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix::tests {

inline constexpr std::string_view kAgentDomain = "com.orvane.Vornix3.Scheduler";
inline constexpr std::string_view kMainDomain = "com.orvane.Vornix3";
inline constexpr std::string_view kFormerDomain = "com.orvane.Vornix-3-Scheduler";
inline constexpr std::string_view kDateKey = "LastSchedulerNotificationDate";

// What the agent did to the world, in the order in which it did it.
using Journal = std::vector<std::string>;

// Notifications that enter themselves in the journal.
class JournalledNotifications final : public UserNotificationService {
 public:
  explicit JournalledNotifications(Journal& journal) : journal_(journal) {}

  std::optional<NSError> deliver(const NSUserNotification& notification) override {
    journal_.push_back("deliver " + notification.informativeText);
    displayed.push_back(notification);
    return std::nullopt;
  }
  std::vector<NSUserNotification> displayedNotifications() override { return displayed; }
  void removeAllDisplayedNotifications() override {
    journal_.emplace_back("remove notifications");
    displayed.clear();
  }
  void setActivationHandler(ActivationHandler handler) override { click = std::move(handler); }
  std::optional<NSUserNotification> launchNotification() override { return std::nullopt; }

  std::vector<NSUserNotification> displayed;
  ActivationHandler click;

 private:
  Journal& journal_;
};

// An agent in a world of fakes, its clock injected.
class AgentWorld {
 public:
  AgentWorld() {
    applications.running.clear();
    application.whenTerminated = [this] { journal.emplace_back("terminate"); };
  }

  Journal journal;
  fakes::FakeSystemClock clock;
  fakes::FakePreferencesStore preferences;
  NSNotificationCenter localCenter;
  // The shared one, where running applications are looked for.
  fakes::FakeApplicationService& applications = fakes::processApplications();
  JournalledNotifications notifications{journal};
  fakes::FakeApplication application{preferences};
  NSUserNotificationCenter center{notifications};
  std::shared_ptr<NSUserDefaults> defaults =
      std::make_shared<NSUserDefaults>(std::string(kAgentDomain), preferences, localCenter);
  NSRunLoop runLoop{std::make_unique<fakes::FakeEventWaiter>(clock), clock};
  fakes::ScopedSharedLogger log;
  std::vector<Dictionary> events;
  // What happens while the main application is being launched.
  std::function<void()> whileLaunching;
  std::shared_ptr<AppDelegate> delegate = AppDelegate::create(services());

  void setPeriod(const Value& code) { set("SchedulerPeriod", code, kMainDomain); }
  void setLastDate(double secondsAgo) {
    set(kDateKey, clock.now().addingTimeInterval(-secondsAgo), kAgentDomain);
  }
  void set(std::string_view key, const Value& value, std::string_view domain) {
    EXPECT_FALSE(preferences.setValue(key, value, domain));
  }
  [[nodiscard]] std::optional<Value> stored(std::string_view key, std::string_view domain) {
    return preferences.copyValue(key, domain, PreferencesUser::Current);
  }

  void start() { delegate->applicationDidFinishLaunching({}); }
  void startByClick() {
    delegate->applicationDidFinishLaunching({.launchUserNotification = NSUserNotification{}});
  }
  // Lets the run loop turn for so many seconds of its own clock.
  void pass(double seconds) {
    runLoop.runUntil([] { return false; }, seconds);
  }

 private:
  AgentServices services() {
    return AgentServices{
        .standardUserDefaults = [this] { return defaults; },
        .preferences = preferences,
        .clock = clock,
        .runLoop = runLoop,
        .application = application,
        .notificationCenter = [this]() -> NSUserNotificationCenter& { return center; },
        .workspace = NSWorkspace::sharedWorkspace,
        .trackEvent =
            [this](const Dictionary& event) {
              journal.push_back("track " + event.find("ea")->description());
              events.push_back(event);
            },
        .launchMainApplication =
            [this](std::string_view argument, const std::vector<std::string>& files) {
              journal.push_back("launch " + std::string(argument) + " " +
                                std::to_string(files.size()));
              if (whileLaunching) whileLaunching();
            },
        .localizedString = [](std::string_view key) { return std::string(key); },
        .timeOfDay = [](Date) { return std::string("09:41"); }};
  }
};

}  // namespace vornix::tests
