#include "platform/runloop/ThreadPriority.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <future>
#include <latch>
#include <thread>

#include "platform/runloop/BackgroundQueue.h"
#include "tests/fakes/FakeThreadPriority.h"

namespace vornix {
namespace {

class FakeSystem {
 public:
  ThreadPriority& priority() { return priority_; }

 private:
  fakes::FakeThreadPriority priority_;
};

class RealSystem {
 public:
  ThreadPriority& priority() { return sharedThreadPriority(); }
};

template <typename System>
class ThreadPriorityContract : public testing::Test {
 protected:
  System system_;
  ThreadPriority& priority_ = system_.priority();
};

using Systems = testing::Types<FakeSystem, RealSystem>;
TYPED_TEST_SUITE(ThreadPriorityContract, Systems);

TYPED_TEST(ThreadPriorityContract, AThreadThatAsksForTheLowestPriorityHasItForGood) {
  std::thread([&] {
    this->priority_.lowerToBackground();
    EXPECT_TRUE(this->priority_.isBackground());
    this->priority_.lowerToBackground();
    EXPECT_TRUE(this->priority_.isBackground());
  }).join();
}

TYPED_TEST(ThreadPriorityContract, NoOtherThreadIsLowered) {
  const bool before = this->priority_.isBackground();
  std::latch lowered(1);
  std::latch looked(1);
  std::thread other([&] {
    const bool beforeThere = this->priority_.isBackground();
    lowered.wait();
    EXPECT_EQ(this->priority_.isBackground(), beforeThere);
    looked.count_down();
  });
  std::thread asking([&] {
    this->priority_.lowerToBackground();
    lowered.count_down();
    looked.wait();
  });
  asking.join();
  other.join();
  EXPECT_EQ(this->priority_.isBackground(), before);
}

TEST(LinuxThreadPriority, ABackgroundBlockIsServedAfterAllOthers) {
  std::promise<int> niceness;
  dispatchAsyncOnBackgroundQueue([&] { niceness.set_value(getpriority(PRIO_PROCESS, 0)); });
  EXPECT_EQ(niceness.get_future().get(), 19);
}

}  // namespace
}  // namespace vornix
