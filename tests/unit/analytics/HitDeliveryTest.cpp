#include "analytics/HitDelivery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/runloop/NSRunLoop.h"
#include "tests/fakes/FakeEventWaiter.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/support/Journal.h"

namespace vornix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using tests::Journal;

constexpr double kGenerous = 60;

// Notes the start and the end of each request before and after a server answers it.
class NotingClient final : public HttpClient {
 public:
  NotingClient(Journal& journal, HttpClient& server) : journal_(journal), server_(server) {}
  [[nodiscard]] HttpResponse send(const HttpRequest& request) override {
    journal_.note("start " + request.url);
    auto response = server_.send(request);
    journal_.note("end " + request.url);
    return response;
  }

 private:
  Journal& journal_;
  HttpClient& server_;
};

// Delivery over the real queue and the main thread's run loop.
class Delivering : public testing::Test {
 protected:
  Delivering() { fakes::waiterOf(*loop_).holdTime(true); }

  HitDelivery::MakeClient clients() {
    return [this]() -> std::unique_ptr<HttpClient> {
      ++clientsMade_;
      return std::make_unique<NotingClient>(journal_, server_);
    };
  }

  void completed(const std::function<void()>& completion) {
    completionsOnMainThread_ += isMainThread() ? 1 : 0;
    journal_.note("completion");
    completion();
  }

  HitDelivery::DispatchOnMainQueue dispatch() {
    return [this](std::function<void()> completion) {
      dispatchAsyncOnMainQueue(
          [this, completion = std::move(completion)] { completed(completion); });
    };
  }

  // Turns the main run loop until so many completions have run.
  [[nodiscard]] bool runUntilCompletions(int count) {
    return loop_->runUntil([this, count] { return completionsOnMainThread_ >= count; }, kGenerous);
  }

  std::shared_ptr<NSRunLoop> loop_ = NSRunLoop::mainRunLoop();
  Journal journal_;
  fakes::FakeHttpClient server_;
  std::atomic<int> clientsMade_ = 0;
  int completionsOnMainThread_ = 0;
  std::unique_ptr<HitDelivery> delivery_ = std::make_unique<HitDelivery>(clients(), dispatch());
};

TEST_F(Delivering, StartsASecondRequestOnlyAfterTheFirstCompletionRanOnTheMainThread) {
  delivery_->enqueue({.url = "https://a/1"});
  delivery_->enqueue({.url = "https://a/2"});
  ASSERT_TRUE(server_.waitForAnswers(1));
  // The first exchange is over, but nothing serves the main thread yet.
  EXPECT_TRUE(delivery_->sendingLock()->boolValue());
  EXPECT_EQ(server_.requests().size(), 1U);
  ASSERT_TRUE(runUntilCompletions(2));
  EXPECT_THAT(journal_.events(), ElementsAre("start https://a/1", "end https://a/1", "completion",
                                             "start https://a/2", "end https://a/2", "completion"));
  EXPECT_FALSE(delivery_->sendingLock()->boolValue());
}

TEST_F(Delivering, KeepsTheOrderOfManyRequests) {
  std::vector<std::string> expected;
  for (int index = 0; index < 20; ++index) {
    expected.push_back("https://a/" + std::to_string(index));
    delivery_->enqueue({.url = expected.back()});
  }
  ASSERT_TRUE(runUntilCompletions(20));
  std::vector<std::string> urls;
  for (const auto& request : server_.requests()) urls.push_back(request.url);
  EXPECT_EQ(urls, expected);
}

TEST_F(Delivering, CompletesARequestThatFailsAndGoesOn) {
  server_.answer({.error = NSError{.domain = std::string(NSURLErrorDomain), .code = -1001}});
  delivery_->enqueue({.url = "https://a/1"});
  delivery_->enqueue({.url = "not a url"});
  delivery_->enqueue({.url = "https://a/3"});
  ASSERT_TRUE(runUntilCompletions(3));
  EXPECT_EQ(server_.requests().back().url, "https://a/3");
}

TEST_F(Delivering, CompletesWhereNoClientCanBeMade) {
  HitDelivery delivery([]() -> std::unique_ptr<HttpClient> { return nullptr; }, dispatch());
  delivery.enqueue({.url = "https://a/1"});
  ASSERT_TRUE(runUntilCompletions(1));
  EXPECT_THAT(server_.requests(), IsEmpty());
}

TEST_F(Delivering, MakesNoClientBeforeTheFirstRequestAndOneForAllOfTheQueue) {
  (void)delivery_->connectionQueue();
  (void)delivery_->sendingLock();
  EXPECT_EQ(clientsMade_, 0);
  delivery_->enqueue({.url = "https://a/1"});
  delivery_->enqueue({.url = "https://a/2"});
  ASSERT_TRUE(runUntilCompletions(2));
  EXPECT_EQ(clientsMade_, 1);
}

TEST_F(Delivering, SendsSynchronouslyOnTheCallingThreadBeforeItReturns) {
  delivery_->sendSynchronously({.url = "https://a/1"});
  EXPECT_THAT(journal_.events(), ElementsAre("start https://a/1", "end https://a/1"));
}

TEST_F(Delivering, SendsSynchronouslyWhileAQueuedRequestIsUnderWay) {
  fakes::FakeHttpClient slow;
  HitDelivery delivery(
      [this, &slow]() -> std::unique_ptr<HttpClient> {
        return std::make_unique<NotingClient>(journal_, clientsMade_++ == 0 ? slow : server_);
      },
      dispatch());
  slow.block();
  delivery.enqueue({.url = "https://a/queued"});
  ASSERT_TRUE(slow.waitForRequests(1));
  delivery.sendSynchronously({.url = "https://a/now"});
  EXPECT_THAT(journal_.events(),
              ElementsAre("start https://a/queued", "start https://a/now", "end https://a/now"));
  EXPECT_TRUE(delivery.sendingLock()->boolValue());
  slow.unblock();
  ASSERT_TRUE(runUntilCompletions(1));
}

TEST_F(Delivering, IsSerialAndMakesItsQueueOnce) {
  const auto queue = delivery_->connectionQueue();
  EXPECT_EQ(queue->maxConcurrentOperationCount(), 1);
  EXPECT_EQ(delivery_->connectionQueue(), queue);
  delivery_->setConnectionQueue(nullptr);
  EXPECT_NE(delivery_->connectionQueue(), queue);
}

TEST_F(Delivering, WaitsForWhoeverHoldsTheSendingLock) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  delivery_->setSendingLock(lock);
  delivery_->enqueue({.url = "https://a/1"});
  EXPECT_THAT(server_.requests(), IsEmpty());
  lock->setBoolValue(false);
  EXPECT_TRUE(server_.waitForRequests(1));
  ASSERT_TRUE(runUntilCompletions(1));
  EXPECT_FALSE(lock->boolValue());
}

TEST_F(Delivering, EndsWithRequestsStillQueuedAndSendsNoneOfThem) {
  delivery_->enqueue({.url = "https://a/1"});
  delivery_->enqueue({.url = "https://a/2"});
  delivery_->enqueue({.url = "https://a/3"});
  ASSERT_TRUE(server_.waitForAnswers(1));
  delivery_.reset();
  ASSERT_TRUE(runUntilCompletions(1));
  EXPECT_EQ(server_.requests().size(), 1U);
}

}  // namespace
}  // namespace vornix
