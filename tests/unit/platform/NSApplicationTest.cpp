#include "platform/desktop/NSApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakePreferencesStore.h"
#include "tests/fakes/FakeProcessLifetime.h"
#include "tests/fakes/FakeUserNotificationService.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Delegate final : public NSApplicationDelegate {
 public:
  using Action = std::function<void(const ApplicationLaunchInformation&)>;
  explicit Delegate(Action action) : action_(std::move(action)) {}
  void applicationDidFinishLaunching(const ApplicationLaunchInformation& information) override {
    action_(information);
  }

 private:
  Action action_;
};

class NSApplicationTest : public testing::Test {
 protected:
  NSApplicationTest() {
    fakes::processLifetime().reset();
    fakes::processUserNotifications() = {};
    setDiagnosticReceiver([this](std::string_view line) { diagnostics_.emplace_back(line); });
  }
  ~NSApplicationTest() override {
    for (const auto& token : tokens_) center_.removeObserver(token);
    setDiagnosticReceiver({});
  }

  void observe(std::string_view name, NSNotificationCenter::Handler handler) {
    tokens_.push_back(center_.addObserver(name, std::move(handler)));
  }
  void noteAt(std::string_view name, const std::string& event) {
    observe(name, [this, event](const NSNotification&) { events_.push_back(event); });
  }
  static NSApplication& application() { return NSApplication::sharedApplication(); }

  // The application of which the delegate does that when launching has finished.
  static int launch(Delegate::Action action, std::vector<std::string> arguments = {"program"}) {
    std::vector<char*> argv;
    for (auto& argument : arguments) argv.push_back(argument.data());
    return NSApplicationMain(static_cast<int>(argv.size()), argv.data(),
                             [&] { return std::make_shared<Delegate>(std::move(action)); });
  }

  NSNotificationCenter& center_ = NSNotificationCenter::defaultCenter();
  std::vector<NSNotificationCenter::ObserverToken> tokens_;
  std::vector<std::string> events_;
  std::vector<std::string> diagnostics_;
};

TEST_F(NSApplicationTest, TerminateAnnouncesSavesPreferencesAndEndsWithZero) {
  auto& store = fakes::processPreferences();
  const auto before = store.synchronized().size();
  observe(NSApplicationWillTerminateNotification, [&](const NSNotification& notification) {
    EXPECT_EQ(notification.object.get(), &application());
    EXPECT_EQ(store.synchronized().size(), before);
    events_.emplace_back("announced");
  });
  EXPECT_THROW(application().terminate(nullptr), fakes::ProcessEnded);
  EXPECT_THAT(events_, ElementsAre("announced"));
  EXPECT_EQ(store.synchronized().size(), before + 1);
  EXPECT_EQ(store.synchronized().back(), "*");
  EXPECT_THAT(fakes::processLifetime().endStatuses(), ElementsAre(0));
}

TEST_F(NSApplicationTest, AnObserverOfTheEndMayAskForItAgain) {
  observe(NSApplicationWillTerminateNotification, [&](const NSNotification&) {
    events_.emplace_back("announced");
    application().terminate(nullptr);
  });
  EXPECT_THROW(application().terminate(nullptr), fakes::ProcessEnded);
  EXPECT_THAT(events_, ElementsAre("announced"));
}

TEST_F(NSApplicationTest, LaunchesInOrderAndThenRunsTheMainLoop) {
  const auto loop = NSRunLoop::mainRunLoop();
  loop->performBlock([&] { events_.emplace_back("loop"); });
  launch([&](const auto&) {
    events_.emplace_back("delegate");
    noteAt(NSApplicationDidFinishLaunchingNotification, "registered too late");
    loop->performBlock([&] { loop->stop(); });
  });
  EXPECT_THAT(events_, ElementsAre("delegate", "loop"));
}

TEST_F(NSApplicationTest, TellsTheDelegateBeforeWhatWasRegisteredWhileItWasMade) {
  NSApplicationMain(0, nullptr, [&] {
    noteAt(NSApplicationDidFinishLaunchingNotification, "observer");
    return std::make_shared<Delegate>([&](const auto&) {
      events_.emplace_back("delegate");
      NSRunLoop::mainRunLoop()->performBlock([] { NSRunLoop::mainRunLoop()->stop(); });
    });
  });
  EXPECT_THAT(events_, ElementsAre("delegate", "observer"));
}

TEST_F(NSApplicationTest, HandsTheClickThatStartedItToTheDelegate) {
  NSUserNotification clicked;
  clicked.title = "Clean";
  auto& service = fakes::processUserNotifications();
  service.launch = clicked;
  NSApplicationMain(0, nullptr, [&] {
    EXPECT_EQ(service.launchQuestions, 1);
    return std::make_shared<Delegate>([&](const auto& information) {
      EXPECT_EQ(information.launchUserNotification, clicked);
      NSRunLoop::mainRunLoop()->performBlock([] { NSRunLoop::mainRunLoop()->stop(); });
    });
  });
  EXPECT_EQ(service.launchQuestions, 1);
}

TEST_F(NSApplicationTest, AnOrdinaryStartHasNoLaunchNotification) {
  launch([&](const auto& information) {
    events_.emplace_back("launched");
    EXPECT_EQ(information.launchUserNotification, std::nullopt);
    NSRunLoop::mainRunLoop()->performBlock([] { NSRunLoop::mainRunLoop()->stop(); });
  });
  EXPECT_THAT(events_, ElementsAre("launched"));
}

TEST_F(NSApplicationTest, ADelayedTerminateEndsTheMainLoop) {
  launch([&](const auto&) {
    NSRunLoop::mainRunLoop()->performAfterDelay([&] { application().terminate(nullptr); }, 10);
  });
  EXPECT_THAT(fakes::processLifetime().endStatuses(), ElementsAre(0));
}

TEST_F(NSApplicationTest, ARequestFromOutsideEndsItLikeTerminate) {
  noteAt(NSApplicationWillTerminateNotification, "announced");
  launch([](const auto&) {
    NSRunLoop::mainRunLoop()->performAfterDelay(
        [] { fakes::processLifetime().requestTermination(); }, 10);
  });
  EXPECT_THAT(events_, ElementsAre("announced"));
  EXPECT_THAT(fakes::processLifetime().endStatuses(), ElementsAre(0));
}

TEST_F(NSApplicationTest, ARequestThatCameBeforeTheMainLoopEndsItAtItsStart) {
  fakes::processLifetime().requestTermination();
  launch([&](const auto&) { events_.emplace_back("launched"); });
  EXPECT_THAT(events_, ElementsAre("launched"));
  EXPECT_THAT(fakes::processLifetime().endStatuses(), ElementsAre(0));
}

TEST_F(NSApplicationTest, ARequestDuringANestedLoopIsServedThere) {
  launch([&](const auto&) {
    const auto loop = NSRunLoop::mainRunLoop();
    loop->performAfterDelay([] { fakes::processLifetime().requestTermination(); }, 1);
    EXPECT_FALSE(loop->runUntil([] { return false; }, 5));
    events_.emplace_back(fakes::processLifetime().endStatuses().empty() ? "not ended" : "ended");
    loop->performBlock([loop] { loop->stop(); });
  });
  EXPECT_THAT(events_, ElementsAre("ended"));
}

TEST_F(NSApplicationTest, AnObserverOfTheEndMayRunTheLoopDespiteTheRequest) {
  observe(NSApplicationWillTerminateNotification, [&](const NSNotification&) {
    events_.emplace_back("announced");
    (void)NSRunLoop::mainRunLoop()->runUntil([] { return false; }, 5);
  });
  launch([&](const auto&) {
    NSRunLoop::mainRunLoop()->performAfterDelay(
        [&] {
          fakes::processLifetime().requestTermination();
          application().terminate(nullptr);
        },
        1);
  });
  EXPECT_THAT(events_, ElementsAre("announced"));
  EXPECT_THAT(fakes::processLifetime().endStatuses(), ElementsAre(0));
}

TEST_F(NSApplicationTest, ArgumentsBecomePreferencesOfThisRun) {
  launch(
      [](const auto&) {
        EXPECT_EQ(NSUserDefaults::standardUserDefaults()->stringForKey("Colour"), "green");
        NSRunLoop::mainRunLoop()->performBlock([] { NSRunLoop::mainRunLoop()->stop(); });
      },
      {"program", "-Colour", "green"});
  NSUserDefaults::standardUserDefaults()->setArguments({});
}

TEST_F(NSApplicationTest, WithoutADelegateItSaysSoAndRuns) {
  NSRunLoop::mainRunLoop()->performBlock([] { NSRunLoop::mainRunLoop()->stop(); });
  EXPECT_EQ(NSApplicationMain(0, nullptr, [] { return nullptr; }), 0);
  EXPECT_THAT(diagnostics_, ElementsAre(HasSubstr("no delegate")));
}

}  // namespace
}  // namespace vornix
