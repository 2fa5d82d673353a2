#include "platform/runloop/NSOperationQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/runloop/DispatchGroup.h"

namespace vornix {
namespace {

TEST(NSOperationQueue, ASerialQueueRunsBlocksInOrderAndOneAtATime) {
  NSOperationQueue queue(1);
  std::vector<int> order;
  std::atomic<int> running = 0;
  for (int count = 0; count < 1000; ++count) {
    queue.addOperation([&, count] {
      EXPECT_EQ(++running, 1);
      order.push_back(count);
      --running;
    });
  }
  queue.waitUntilAllOperationsAreFinished();
  std::vector<int> expected(1000);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(order, expected);
}

TEST(NSOperationQueue, RunsBlocksOnAnotherThread) {
  NSOperationQueue queue(1);
  std::thread::id worker;
  queue.addOperation([&] { worker = std::this_thread::get_id(); });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_NE(worker, std::thread::id());
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(NSOperationQueue, RunsUpToItsMaximumAtTheSameTime) {
  DispatchGroup together;
  NSOperationQueue queue(3);
  for (int count = 0; count < 3; ++count) together.enter();
  for (int count = 0; count < 3; ++count) {
    queue.addOperation([&] {
      together.leave();
      together.wait();
    });
  }
  queue.waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, NeverRunsMoreThanItsMaximumAtTheSameTime) {
  NSOperationQueue queue(3);
  std::atomic<int> running = 0;
  std::atomic<int> most = 0;
  for (int count = 0; count < 300; ++count) {
    queue.addOperation([&] {
      const int now = ++running;
      int seen = most;
      while (seen < now && !most.compare_exchange_weak(seen, now)) {
      }
      std::this_thread::yield();
      --running;
    });
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_LE(most, 3);
}

TEST(NSOperationQueue, LessThanOneAtATimeCountsAsOne) {
  NSOperationQueue queue(0);
  EXPECT_EQ(queue.maxConcurrentOperationCount(), 1);
  bool hasRun = false;
  queue.addOperation([&] { hasRun = true; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(hasRun);
}

TEST(NSOperationQueue, WaitingOnAQueueWithoutWorkReturnsAtOnce) {
  NSOperationQueue queue(1);
  queue.waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, ABlockMayAddAnother) {
  DispatchGroup done;
  NSOperationQueue queue(1);
  done.enter();
  queue.addOperation([&] { queue.addOperation([&] { done.leave(); }); });
  done.wait();
}

TEST(NSOperationQueue, AnExceptionThatLeavesABlockBecomesADiagnosticAndTheNextBlockRuns) {
  std::vector<std::string> diagnostics;
  setDiagnosticReceiver([&](std::string_view line) { diagnostics.emplace_back(line); });
  {
    NSOperationQueue queue(1);
    bool hasRun = false;
    queue.addOperation([] { throw std::runtime_error("out of cheese"); });
    queue.addOperation([&] { hasRun = true; });
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(hasRun);
  }
  setDiagnosticReceiver({});
  EXPECT_THAT(diagnostics, testing::ElementsAre(testing::HasSubstr("out of cheese")));
}

TEST(NSOperationQueue, ItsEndDropsWhatHasNotStartedAndWaitsForWhatHas) {
  std::atomic<bool> finished = false;
  std::atomic<bool> droppedHasRun = false;
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = held;
  DispatchGroup started;
  DispatchGroup mayFinish;
  started.enter();
  mayFinish.enter();
  auto queue = std::make_unique<NSOperationQueue>(1);
  queue->addOperation([&] {
    started.leave();
    mayFinish.wait();
    finished = true;
  });
  queue->addOperation([&, held = std::move(held)] { droppedHasRun = true; });
  started.wait();
  std::thread helper([&] {
    while (!watched.expired()) std::this_thread::yield();
    mayFinish.leave();
  });
  queue.reset();
  EXPECT_TRUE(finished);
  EXPECT_FALSE(droppedHasRun);
  helper.join();
}

TEST(NSOperationQueue, ABlockMayDestroyItsQueue) {
  DispatchGroup done;
  done.enter();
  auto queue = std::make_shared<NSOperationQueue>(1);
  auto& receiver = *queue;
  DispatchGroup handedOver;
  handedOver.enter();
  receiver.addOperation([&] {
    handedOver.wait();
    queue.reset();
    done.leave();
  });
  handedOver.leave();
  done.wait();
  EXPECT_EQ(queue, nullptr);
}

TEST(NSOperationQueue, ManyThreadsMayAddAndWait) {
  NSOperationQueue serial(1);
  NSOperationQueue wide(4);
  int serialCount = 0;
  std::atomic<int> wideCount = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 16; ++thread) {
    threads.emplace_back([&] {
      for (int count = 0; count < 200; ++count) {
        serial.addOperation([&] { ++serialCount; });
        wide.addOperation([&] { ++wideCount; });
        if (count % 50 == 0) wide.waitUntilAllOperationsAreFinished();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  serial.waitUntilAllOperationsAreFinished();
  wide.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(serialCount, 3200);
  EXPECT_EQ(wideCount, 3200);
}

}  // namespace
}  // namespace vornix
