#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

#include "tests/contract/RunLoopFixture.h"

namespace vornix::contract {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

// A handle that stays ready until it is made silent.
class FakeSignal {
 public:
  explicit FakeSignal(NSRunLoop& loop) : waiter_(fakes::waiterOf(loop)) {}
  [[nodiscard]] int descriptor() const { return number_; }
  void makeReady() { waiter_.setReady(number_); }
  void makeSilent() { waiter_.setReady(number_, false); }

 private:
  static inline int last_ = 100;
  int number_ = ++last_;
  fakes::FakeEventWaiter& waiter_;
};

class RealSignal {
 public:
  explicit RealSignal(NSRunLoop& /*loop*/) { EXPECT_EQ(pipe(ends_), 0); }
  RealSignal(const RealSignal&) = delete;
  RealSignal& operator=(const RealSignal&) = delete;
  ~RealSignal() {
    close(ends_[0]);
    close(ends_[1]);
  }
  [[nodiscard]] int descriptor() const { return ends_[0]; }
  void makeReady() { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void makeSilent() {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {};
};

template <typename Time>
using SignalOf = std::conditional_t<std::is_same_v<Time, FakeTime>, FakeSignal, RealSignal>;

class Source final : public RunLoopSource {
 public:
  Source(int descriptor, std::function<void()> action)
      : descriptor_(descriptor), action_(std::move(action)) {}
  [[nodiscard]] WaitHandle handle() const override { return {.descriptor = descriptor_}; }
  [[nodiscard]] std::optional<double> timeout() const override { return limit; }
  void perform() override { action_(); }

  std::optional<double> limit;

 private:
  int descriptor_;
  std::function<void()> action_;
};

template <typename Time>
class RunLoopSourceContract : public RunLoopFixture<Time> {
 protected:
  using Signal = SignalOf<Time>;

  std::shared_ptr<Source> add(int descriptor, std::function<void()> action,
                              const RunLoopModes& modes = {NSRunLoopCommonModes}) {
    auto source = std::make_shared<Source>(descriptor, std::move(action));
    this->loop_.addSource(source, modes);
    return source;
  }

  Signal signal_{this->loop_};
  Signal other_{this->loop_};
};
TYPED_TEST_SUITE(RunLoopSourceContract, Times);

TYPED_TEST(RunLoopSourceContract, AReadySourceIsServedAndEndsAPass) {
  this->add(this->signal_.descriptor(), this->note("source"));
  this->signal_.makeReady();
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kGenerous)));
  EXPECT_THAT(this->events_, ElementsAre("source"));
}

TYPED_TEST(RunLoopSourceContract, ASilentSourceLetsThePassWaitForTheDate) {
  this->add(this->signal_.descriptor(), this->note("source"));
  const double deadline = this->now() + kShort;
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kShort)));
  EXPECT_GE(this->now(), deadline - 0.001);
  EXPECT_TRUE(this->events_.empty());
}

TYPED_TEST(RunLoopSourceContract, ASourceIsServedInItsModesOnly) {
  this->add(this->signal_.descriptor(), this->note("source"), {kPanelMode});
  this->signal_.makeReady();
  EXPECT_FALSE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(0)));
  EXPECT_TRUE(this->runUntilEvents(1, kPanelMode));
}

TYPED_TEST(RunLoopSourceContract, AddingASourceAgainReplacesItsModes) {
  const auto source = this->add(this->signal_.descriptor(), this->note("source"), {kPanelMode});
  this->loop_.addSource(source, {NSDefaultRunLoopMode});
  this->loop_.addSource(nullptr, {NSDefaultRunLoopMode});
  this->signal_.makeReady();
  EXPECT_FALSE(this->loop_.runModeBeforeDate(kPanelMode, this->fromNow(0)));
  EXPECT_TRUE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(0)));
  EXPECT_THAT(this->events_, ElementsAre("source"));
}

TYPED_TEST(RunLoopSourceContract, ASourceMayAskToBeServedThoughItsHandleIsSilent) {
  const double due = this->now() + kShort;
  const auto source = this->add(-1, this->note("source"));
  source->limit = kShort;
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_GE(this->now(), due);
  source->limit = 0;
  EXPECT_TRUE(this->runUntilEvents(2));
  source->limit.reset();
  EXPECT_FALSE(this->loop_.runUntil([&] { return this->events_.size() > 2; }, kShort));
}

TYPED_TEST(RunLoopSourceContract, ASourceMayBeRemovedWhileItIsServed) {
  std::shared_ptr<Source> source;
  source = this->add(this->signal_.descriptor(), [&] {
    this->note("source")();
    this->loop_.removeSource(*source);
    source.reset();
  });
  this->signal_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(1));
  EXPECT_FALSE(this->loop_.runModeBeforeDate(NSDefaultRunLoopMode, this->fromNow(kGenerous)));
  EXPECT_EQ(source, nullptr);
}

TYPED_TEST(RunLoopSourceContract, ASourceMayRemoveAnotherThatIsReadyToo) {
  const auto victim = std::make_shared<Source>(this->other_.descriptor(), this->note("victim"));
  this->add(this->signal_.descriptor(), [&] {
    this->signal_.makeSilent();
    this->loop_.removeSource(*victim);
    this->note("source")();
  });
  this->loop_.addSource(victim);
  this->signal_.makeReady();
  this->other_.makeReady();
  (void)this->loop_.runUntil([] { return false; }, kShort);
  EXPECT_THAT(this->events_, ElementsAre("source"));
}

TYPED_TEST(RunLoopSourceContract, SourcesThatAreAlwaysReadyTakeTurns) {
  this->add(this->signal_.descriptor(), this->note("one"));
  this->add(this->other_.descriptor(), this->note("other"));
  this->signal_.makeReady();
  this->other_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(4));
  EXPECT_THAT(this->events_, ElementsAre("one", "other", "one", "other"));
}

TYPED_TEST(RunLoopSourceContract, ASourceThatIsAlwaysReadyDoesNotStarveBlocksAndTimers) {
  this->add(this->signal_.descriptor(), this->note("source"));
  this->signal_.makeReady();
  this->loop_.performAfterDelay(this->note("timer"), 0);
  this->loop_.performBlock(this->note("block"));
  EXPECT_TRUE(this->runUntilEvents(6));
  EXPECT_THAT(this->events_, Contains("timer"));
  EXPECT_THAT(this->events_, Contains("block"));
}

TYPED_TEST(RunLoopSourceContract, BlocksThatAlwaysComeBackDoNotStarveASource) {
  std::function<void()> again = [&] { this->loop_.performBlock(again); };
  again();
  this->add(this->signal_.descriptor(), this->note("source"));
  this->signal_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(1));
}

TYPED_TEST(RunLoopSourceContract, ASourceMayRunTheLoopAndIsNotServedAgainFromInside) {
  this->add(this->signal_.descriptor(), [&] {
    this->loop_.performBlock(this->note("nested block"));
    (void)this->loop_.runUntil([] { return false; }, kShort);
    this->signal_.makeSilent();
    this->note("source")();
  });
  this->signal_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(2));
  EXPECT_THAT(this->events_, ElementsAre("nested block", "source"));
}

TYPED_TEST(RunLoopSourceContract, AnotherSourceIsServedFromInsideOne) {
  this->add(this->signal_.descriptor(), [&] {
    this->signal_.makeSilent();
    this->other_.makeReady();
    EXPECT_TRUE(this->runUntilEvents(1));
    this->note("outer")();
  });
  this->add(this->other_.descriptor(), [&] {
    this->other_.makeSilent();
    this->note("inner")();
  });
  this->signal_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(2));
  EXPECT_THAT(this->events_, ElementsAre("inner", "outer"));
}

TYPED_TEST(RunLoopSourceContract, AnExceptionThatLeavesASourceBecomesADiagnostic) {
  this->add(this->signal_.descriptor(), [&] {
    this->signal_.makeSilent();
    this->note("source")();
    throw std::runtime_error("out of cheese");
  });
  this->signal_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(1));
  this->signal_.makeReady();
  EXPECT_TRUE(this->runUntilEvents(2));
  EXPECT_THAT(this->diagnostics_,
              ElementsAre(HasSubstr("out of cheese"), HasSubstr("out of cheese")));
}

}  // namespace
}  // namespace vornix::contract
