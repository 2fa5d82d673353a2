#include "foundation/NSObject+Additions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeEventWaiter.h"
#include "tests/fakes/ScopedSharedLogger.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Notes the notices that it is sent, and on which thread.
class Receiver final : public NSObject {
 public:
  void willChangeValueForKey(std::string_view key) override { note("will ", key); }
  void didChangeValueForKey(std::string_view key) override { note("did ", key); }

  std::vector<std::string> notices;

 private:
  void note(std::string_view kind, std::string_view key) {
    EXPECT_TRUE(isMainThread());
    notices.push_back(std::string(kind).append(key));
  }
};

using Send = void (*)(const std::shared_ptr<NSObject>&, std::optional<std::string_view>);

class ChangeNotices : public testing::TestWithParam<std::pair<std::string, Send>> {
 protected:
  void send(const std::shared_ptr<NSObject>& receiver, std::optional<std::string_view> key) const {
    GetParam().second(receiver, key);
  }
  [[nodiscard]] std::string notice(std::string_view key) const {
    return (GetParam().first + " ").append(key);
  }
  // Whatever waits for the main thread in the common modes.
  static void turnMainLoop() {
    const auto loop = NSRunLoop::mainRunLoop();
    bool isOver = false;
    loop->performBlock([&] { isOver = true; });
    EXPECT_TRUE(loop->runUntil([&] { return isOver; }, 60));
  }

  fakes::ScopedSharedLogger logger_;
  std::shared_ptr<Receiver> receiver_ = std::make_shared<Receiver>();
};

TEST_P(ChangeNotices, DoNothingWithoutAKey) {
  send(receiver_, std::nullopt);
  std::thread([&] { send(receiver_, std::nullopt); }).join();
  turnMainLoop();
  EXPECT_THAT(receiver_->notices, IsEmpty());
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_P(ChangeNotices, DoNothingWithoutAReceiver) {
  send(nullptr, "name");
  std::thread([&] { send(nullptr, "name"); }).join();
  turnMainLoop();
  EXPECT_THAT(logger_.messages(), IsEmpty());
}

TEST_P(ChangeNotices, AreDeliveredBeforeTheCallReturnsOnTheMainThread) {
  send(receiver_, "name");
  EXPECT_THAT(receiver_->notices, ElementsAre(notice("name")));
}

TEST_P(ChangeNotices, AreQueuedOnTheMainThreadFromAnotherWithoutWaiting) {
  std::thread([&] {
    send(receiver_, "name");
    send(receiver_, "age");
  }).join();
  EXPECT_THAT(receiver_->notices, IsEmpty());
  turnMainLoop();
  EXPECT_THAT(receiver_->notices, ElementsAre(notice("name"), notice("age")));
}

TEST_P(ChangeNotices, WaitForACommonMode) {
  std::thread([&] { send(receiver_, "name"); }).join();
  const auto loop = NSRunLoop::mainRunLoop();
  EXPECT_FALSE(loop->runUntil([&] { return !receiver_->notices.empty(); }, 1, "panel"));
  loop->addCommonMode("panel");
  EXPECT_TRUE(loop->runUntil([&] { return !receiver_->notices.empty(); }, 1, "panel"));
}

TEST_P(ChangeNotices, RetainTheReceiverUntilTheyAreDelivered) {
  const std::weak_ptr<Receiver> watched = receiver_;
  std::thread([&] { send(receiver_, "name"); }).join();
  receiver_.reset();
  EXPECT_FALSE(watched.expired());
  turnMainLoop();
  EXPECT_TRUE(watched.expired());
}

TEST_P(ChangeNotices, CarryAnyKeyUnchanged) {
  const std::vector<std::string> keys{"",
                                      "name",
                                      "street.name",
                                      " ",
                                      "\xC3\x9F",
                                      "e\xCC\x81",
                                      "\xC3\xA9",
                                      "\xED\x95\x9C",
                                      "\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB",
                                      "\xCF\x83\xCF\x82",
                                      "\xC4\xB0",
                                      "\xF0\x9F\x98\x80",
                                      "\xE2\x80\x8B",
                                      "\xEF\xBB\xBF",
                                      "\xD7\xA9\xD7\x9C",
                                      std::string("a\0b", 3),
                                      "\xFF\xFE",
                                      "\xED\xA0\x80",
                                      "\xC3",
                                      "%@ %s",
                                      std::string(1'000'000, 'k')};
  std::vector<std::string> expected;
  for (const auto& key : keys) {
    send(receiver_, key);
    std::thread([&] {
      // The key may be gone by the time the notice is sent.
      const auto passing = std::make_unique<std::string>(key);
      send(receiver_, *passing);
    }).join();
    turnMainLoop();
    expected.push_back(notice(key));
    expected.push_back(notice(key));
  }
  EXPECT_EQ(receiver_->notices, expected);
}

INSTANTIATE_TEST_SUITE_P(Both, ChangeNotices,
                         testing::Values(std::pair("will", &willChangeValueForKeyOnMainThread),
                                         std::pair("did", &didChangeValueForKeyOnMainThread)),
                         [](const auto& test) { return test.param.first; });

TEST(ChangeNoticesOfAnObject, ReachItsObserversOnTheMainThread) {
  class Watcher final : public NSObject {
   public:
    void observeValueForKeyPath(std::string_view keyPath, NSObject& /*object*/) override {
      EXPECT_TRUE(isMainThread());
      keys.emplace_back(keyPath);
    }
    std::vector<std::string> keys;
  };
  const auto object = std::make_shared<NSObject>();
  const auto watcher = std::make_shared<Watcher>();
  object->addObserver(watcher, "name");
  std::thread([&] {
    willChangeValueForKeyOnMainThread(object, "name");
    didChangeValueForKeyOnMainThread(object, "name");
  }).join();
  EXPECT_THAT(watcher->keys, IsEmpty());
  EXPECT_TRUE(NSRunLoop::mainRunLoop()->runUntil([&] { return !watcher->keys.empty(); }, 60));
  EXPECT_THAT(watcher->keys, ElementsAre("name"));
}

}  // namespace
}  // namespace vornix
