#include "platform/runloop/NSNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "platform/base/Diagnostics.h"

namespace vornix {
namespace {

using testing::ElementsAre;

class NSNotificationCenterTest : public testing::Test {
 protected:
  NSNotificationCenter::ObserverToken note(std::string text, std::string_view name = "Cooked",
                                           const NSObject* object = nullptr) {
    return center_.addObserver(
        name, [this, text = std::move(text)](const NSNotification&) { events_.push_back(text); },
        object);
  }
  void post(const std::string& name = "Cooked", std::shared_ptr<NSObject> object = nullptr) {
    center_.postNotification({.name = name, .object = std::move(object), .userInfo = {}});
  }

  NSNotificationCenter center_;
  std::vector<std::string> events_;
};

TEST_F(NSNotificationCenterTest, DeliversSynchronouslyInOrderOfRegistration) {
  (void)note("first");
  (void)note("second");
  (void)note("other", "Eaten");
  post();
  EXPECT_THAT(events_, ElementsAre("first", "second"));
}

TEST_F(NSNotificationCenterTest, HandsOverNameObjectAndUserInfo) {
  const auto object = std::make_shared<NSString>("soup");
  int calls = 0;
  (void)center_.addObserver("Cooked", [&](const NSNotification& notification) {
    ++calls;
    EXPECT_EQ(notification.name, "Cooked");
    EXPECT_EQ(notification.object, object);
    EXPECT_EQ(notification.userInfo, (Dictionary{{"minutes", Value(7)}}));
  });
  center_.postNotification(
      {.name = "Cooked", .object = object, .userInfo = Dictionary{{"minutes", Value(7)}}});
  EXPECT_EQ(calls, 1);
}

TEST_F(NSNotificationCenterTest, AnObserverOfOneObjectHearsOfItAlone) {
  const auto soup = std::make_shared<NSString>("soup");
  (void)note("soup", "Cooked", soup.get());
  (void)note("any");
  post("Cooked", std::make_shared<NSString>("soup"));
  post("Cooked");
  EXPECT_THAT(events_, ElementsAre("any", "any"));
  post("Cooked", soup);
  EXPECT_THAT(events_, ElementsAre("any", "any", "soup", "any"));
}

TEST_F(NSNotificationCenterTest, AnObserverRemovedDuringAPostingIsNotCalledAnyMore) {
  NSNotificationCenter::ObserverToken second;
  NSNotificationCenter::ObserverToken first;
  first = center_.addObserver("Cooked", [&](const NSNotification&) {
    events_.emplace_back("first");
    center_.removeObserver(second);
    center_.removeObserver(first);
  });
  second = note("second");
  (void)note("third");
  post();
  post();
  EXPECT_THAT(events_, ElementsAre("first", "third", "third"));
}

TEST_F(NSNotificationCenterTest, AnObserverAddedDuringAPostingIsNotCalledForIt) {
  const auto token =
      center_.addObserver("Cooked", [&](const NSNotification&) { (void)note("new"); });
  post();
  EXPECT_TRUE(events_.empty());
  center_.removeObserver(token);
  post();
  EXPECT_THAT(events_, ElementsAre("new"));
}

TEST_F(NSNotificationCenterTest, AnObserverMayPostAgain) {
  int depth = 0;
  (void)center_.addObserver("Cooked", [&](const NSNotification&) {
    if (++depth < 3) post();
  });
  post();
  EXPECT_EQ(depth, 3);
}

TEST_F(NSNotificationCenterTest, RemovingATokenThatIsNotItsOwnHasNoEffect) {
  NSNotificationCenter other;
  const auto foreign = other.addObserver("Cooked", [](const NSNotification&) {});
  const auto own = note("own");
  center_.removeObserver(foreign);
  center_.removeObserver(nullptr);
  post();
  center_.removeObserver(own);
  center_.removeObserver(own);
  post();
  EXPECT_THAT(events_, ElementsAre("own"));
}

TEST_F(NSNotificationCenterTest, AnExceptionOfOneObserverDoesNotReachTheOthersOrThePoster) {
  std::vector<std::string> diagnostics;
  setDiagnosticReceiver([&](std::string_view line) { diagnostics.emplace_back(line); });
  (void)center_.addObserver(
      "Cooked", [](const NSNotification&) { throw std::runtime_error("out of cheese"); });
  (void)note("second");
  post();
  setDiagnosticReceiver({});
  EXPECT_THAT(events_, ElementsAre("second"));
  EXPECT_THAT(diagnostics,
              ElementsAre("An exception left an observer of \"Cooked\": out of cheese"));
}

TEST_F(NSNotificationCenterTest, ManyThreadsMayPostAddAndRemove) {
  std::atomic<int> calls = 0;
  const auto kept = center_.addObserver("Cooked", [&](const NSNotification&) { ++calls; });
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&] {
      for (int count = 0; count < 200; ++count) {
        const auto token = center_.addObserver("Cooked", [](const NSNotification&) {});
        post();
        center_.removeObserver(token);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(calls, 1600);
}

TEST_F(NSNotificationCenterTest, KnowsWhetherANameHasAnObserver) {
  EXPECT_FALSE(center_.hasObserver("Cooked"));
  const auto token = note("first");
  EXPECT_TRUE(center_.hasObserver("Cooked"));
  EXPECT_FALSE(center_.hasObserver("cooked"));
  center_.removeObserver(token);
  EXPECT_FALSE(center_.hasObserver("Cooked"));
}

}  // namespace
}  // namespace vornix
