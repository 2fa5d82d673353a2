#include "foundation/VXConditionalLock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/VXBoolConditionalLock.h"
#include "platform/base/NSDictionary.h"
#include "platform/base/NSNull.h"
#include "tests/support/Record.h"
#include "tests/unit/foundation/LockWaiters.h"

namespace vornix {
namespace {

using tests::awaitWaiters;
using tests::waiting;

std::shared_ptr<NSObject> number(int value) {
  return std::make_shared<NSNumber>(Value(value));
}

TEST(VXBoolConditionalLock, ANewLockIsUnlockedAndWaitingReturnsAtOnce) {
  const auto lock = VXBoolConditionalLock::create();
  EXPECT_FALSE(lock->isLocked());
  EXPECT_FALSE(lock->boolValue());
  ASSERT_NE(lock->value(), nullptr);
  lock->waitForUnlock();
  lock->waitForUnlockWithTimeout(0);
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXBoolConditionalLock, AValueThatIsNoNumberIsFalse) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setBoolValue(true);
  auto waiter = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  lock->setValue(std::make_shared<NSString>("true"));
  waiter.get();
  EXPECT_FALSE(lock->isLocked());
  EXPECT_FALSE(lock->boolValue());
  lock->setValue(nullptr);
  EXPECT_FALSE(lock->isLocked());
}

TEST(VXBoolConditionalLock, AnyNumberThatIsNotZeroLocks) {
  const auto lock = VXBoolConditionalLock::create();
  lock->setValue(number(7));
  EXPECT_TRUE(lock->isLocked());
  EXPECT_TRUE(lock->boolValue());
  lock->setValue(number(0));
  EXPECT_FALSE(lock->isLocked());
}

TEST(VXBoolConditionalLock, IsLockedByEveryNumberButNoughtAndByNothingElse) {
  struct Case {
    std::shared_ptr<NSObject> value;
    bool locks;
  };
  const std::vector<Case> cases{{nullptr, false},
                                {tests::number(true), true},
                                {tests::number(false), false},
                                {tests::number(1), true},
                                {tests::number(0), false},
                                {tests::number(-1), true},
                                {tests::number(std::numeric_limits<std::int64_t>::min()), true},
                                {tests::number(std::numeric_limits<std::int64_t>::max()), true},
                                {tests::number(0.0), false},
                                {tests::number(-0.0), false},
                                {tests::number(0.5), true},
                                {tests::number(1e300), true},
                                {tests::number(std::numeric_limits<double>::denorm_min()), true},
                                {tests::number(std::numeric_limits<double>::infinity()), true},
                                {tests::text(""), false},
                                {tests::text("1"), false},
                                {tests::text("YES"), false},
                                {tests::text("true"), false},
                                {tests::text("\xF0\x9F\x98\x80"), false},
                                {tests::text("\xFF"), false},
                                {NSNull::null(), false},
                                {std::make_shared<NSObject>(), false},
                                {std::make_shared<NSDictionary>(), false},
                                {VXConditionalLock::create(), false}};
  const auto lock = VXBoolConditionalLock::create();
  for (std::size_t index = 0; index < cases.size(); ++index) {
    lock->setValue(cases[index].value);
    EXPECT_EQ(lock->value(), cases[index].value) << index;
    EXPECT_EQ(lock->boolValue(), cases[index].locks) << index;
    EXPECT_EQ(lock->isLocked(), cases[index].locks) << index;
  }
}

TEST(VXBoolConditionalLock, WhetherAValueLocksIsToldOfThePresentOneWhateverIsAsked) {
  const auto lock = VXBoolConditionalLock::create();
  EXPECT_FALSE(lock->shouldLockForValue(tests::number(true)));
  lock->setBoolValue(true);
  EXPECT_TRUE(lock->shouldLockForValue(nullptr));
  lock->setBoolValue(false);
}

TEST(VXConditionalLock, APlainLockNeverBlocksWhateverItsValue) {
  const auto lock = VXConditionalLock::create();
  EXPECT_EQ(lock->value(), nullptr);
  for (const auto& value : {number(1), number(0), std::shared_ptr<NSObject>(),
                            std::shared_ptr<NSObject>(std::make_shared<NSString>("locked"))}) {
    lock->setValue(value);
    EXPECT_EQ(lock->value(), value);
    EXPECT_FALSE(lock->isLocked());
    lock->waitForUnlock();
  }
}

// Locked from the start; refuses texts.
class ScriptedLock final : public VXConditionalLock {
 public:
  using VXConditionalLock::VXConditionalLock;

  void setupInitialValues() override {
    VXConditionalLock::setupInitialValues();
    calls.emplace_back("setupInitialValues");
  }
  bool shouldLockForValue(const std::shared_ptr<NSObject>& value) override {
    calls.emplace_back("shouldLockForValue");
    if (std::dynamic_pointer_cast<NSString>(value)) throw std::invalid_argument("a text");
    return value == nullptr;
  }

  std::vector<std::string> calls;
};

TEST(VXConditionalLock, AsksTheSubclassForItsValuesAndThenWhetherTheyLock) {
  const auto lock = VXConditionalLock::create<ScriptedLock>();
  EXPECT_EQ(lock->calls, (std::vector<std::string>{"setupInitialValues", "shouldLockForValue"}));
  EXPECT_TRUE(lock->isLocked());
}

TEST(VXConditionalLock, IsUsableAfterTheSubclassThrew) {
  const auto lock = VXConditionalLock::create<ScriptedLock>();
  auto waiter = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  const auto refused = std::make_shared<NSString>("refused");
  EXPECT_THROW(lock->setValue(refused), std::invalid_argument);
  EXPECT_EQ(lock->value(), refused);
  EXPECT_TRUE(lock->isLocked());
  lock->setValue(number(1));
  waiter.get();
}

TEST(VXConditionalLock, AValueThatChangesNothingKeepsTheWaiters) {
  const auto lock = VXConditionalLock::create<ScriptedLock>();
  auto waiter = waiting(lock, -1);
  awaitWaiters(*lock, 1);
  lock->setValue(nullptr);
  EXPECT_EQ(lock->groupsToLeaveOnUnlock().size(), 1U);
  lock->setValue(number(1));
  waiter.get();
}

// Asks the lock on another thread while it ends.
class Inquirer final : public NSObject {
 public:
  Inquirer(std::shared_ptr<VXConditionalLock> lock, std::thread& thread, bool& wasAnswered)
      : lock_(std::move(lock)), thread_(thread), wasAnswered_(wasAnswered) {}
  ~Inquirer() override {
    auto answer = std::make_shared<std::promise<void>>();
    auto answered = answer->get_future();
    thread_ = std::thread([lock = lock_, answer] {
      (void)lock->value();
      answer->set_value();
    });
    wasAnswered_ = answered.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
  }

 private:
  std::shared_ptr<VXConditionalLock> lock_;
  std::thread& thread_;
  bool& wasAnswered_;
};

TEST(VXConditionalLock, LetsGoOfTheOldValueWhileOtherThreadsMayAskForTheNewOne) {
  const auto lock = VXConditionalLock::create();
  std::thread thread;
  bool wasAnswered = false;
  lock->setValue(std::make_shared<Inquirer>(lock, thread, wasAnswered));
  lock->setValue(nullptr);
  thread.join();
  EXPECT_TRUE(wasAnswered);
}

std::shared_ptr<DispatchGroup> enteredGroup() {
  auto group = std::make_shared<DispatchGroup>();
  group->enter();
  return group;
}

bool isLeft(DispatchGroup& group) {
  return group.waitUntil(std::chrono::system_clock::now());
}

TEST(VXConditionalLock, AnUnlockLeavesTheGroupsThatWereSetAndForgetsThem) {
  const auto lock = VXConditionalLock::create();
  const auto first = enteredGroup();
  const auto second = enteredGroup();
  const VXConditionalLock::Groups groups{first, second, nullptr};
  lock->setLocked(true);
  lock->setGroupsToLeaveOnUnlock(groups);
  EXPECT_EQ(lock->groupsToLeaveOnUnlock(), groups);
  EXPECT_FALSE(isLeft(*first));
  lock->setLocked(false);
  EXPECT_TRUE(isLeft(*first));
  EXPECT_TRUE(isLeft(*second));
  EXPECT_TRUE(lock->groupsToLeaveOnUnlock().empty());
}

TEST(VXConditionalLock, SettingTheStateThatItHasTouchesNoGroup) {
  const auto lock = VXConditionalLock::create();
  const auto group = enteredGroup();
  lock->setGroupsToLeaveOnUnlock({group});
  for (const bool locked : {false, true}) {
    if (locked) lock->setLocked(true);
    lock->setLocked(locked);
    EXPECT_EQ(lock->isLocked(), locked);
    EXPECT_FALSE(isLeft(*group)) << locked;
    EXPECT_EQ(lock->groupsToLeaveOnUnlock(), VXConditionalLock::Groups{group}) << locked;
  }
  lock->setLocked(false);
  EXPECT_TRUE(isLeft(*group));
}

TEST(VXConditionalLock, GroupsThatWereReplacedAreNotLeft) {
  const auto lock = VXConditionalLock::create();
  const auto replaced = enteredGroup();
  const auto group = enteredGroup();
  lock->setLocked(true);
  lock->setGroupsToLeaveOnUnlock({replaced});
  lock->setGroupsToLeaveOnUnlock({group});
  lock->setLocked(false);
  EXPECT_FALSE(isLeft(*replaced));
  EXPECT_TRUE(isLeft(*group));
}

}  // namespace
}  // namespace vornix
