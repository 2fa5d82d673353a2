#include "platform/runloop/NSRunLoop.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

#include "platform/runloop/DispatchGroup.h"
#include "platform/runloop/GuardedCall.h"
#include "platform/runloop/RunLoopBlockQueue.h"
#include "platform/runloop/RunLoopSources.h"
#include "platform/runloop/RunLoopTimers.h"

namespace vornix {
namespace {

std::thread::id mainThreadIdentifier() {
  static const std::thread::id identifier = std::this_thread::get_id();
  return identifier;
}

// Asked while the program is being loaded, which happens on its first thread.
[[maybe_unused]] const std::thread::id loadingThread = mainThreadIdentifier();

}  // namespace

class NSRunLoop::State {
 public:
  enum class Served { Nothing, Timer, BlockOrSource };

  State(std::unique_ptr<EventWaiter> eventWaiter, const SystemClock& systemClock)
      : waiter(std::move(eventWaiter)), clock(systemClock) {}

  void enqueue(Block block, const RunLoopModes& modes, bool isOfMainQueue) {
    if (modes.empty()) return;
    queue.push({std::move(block), RunLoopModeSet(modes), isOfMainQueue});
    waiter->wake();
  }

  [[nodiscard]] RunningMode running(RunLoopMode mode) const {
    return {mode, std::find(commonModes.begin(), commonModes.end(), mode) != commonModes.end()};
  }

  [[nodiscard]] bool isEmpty(const RunningMode& mode) const {
    const bool alwaysHasMainQueue = isOfMainThread && mode.isCommon;
    return !alwaysHasMainQueue && !timers.nextDate(mode) && !sources.hasSource(mode) &&
           !queue.hasBlock(mode, !isDrainingMainQueue);
  }

  // Serves one thing, after waiting for it until the deadline at the most. Timers, blocks and
  // sources take turns, so that none of them can keep the others from being served.
  Served serveOne(RunLoopMode modeName, std::optional<double> deadline) {
    const RunningMode mode = running(modeName);
    for (int attempts = 0; attempts < 3; ++attempts) {
      const Turn turn = std::exchange(turn_, nextTurn(turn_));
      if (turn == Turn::Timer && fireTimer(mode)) return Served::Timer;
      if (turn == Turn::Block && runBlock(mode)) return Served::BlockOrSource;
      if (turn == Turn::Source && isBusy(mode) && sources.hasSource(mode) &&
          sources.waitAndServe(mode, *waiter, waiter->now())) {
        return Served::BlockOrSource;
      }
    }
    if (sources.waitAndServe(mode, *waiter, earlier(deadline, timers.nextDate(mode)))) {
      return Served::BlockOrSource;
    }
    return Served::Nothing;
  }

  const std::unique_ptr<EventWaiter> waiter;
  const SystemClock& clock;
  std::thread::id owner = std::this_thread::get_id();
  bool isOfMainThread = false;
  RunLoopBlockQueue queue;
  RunLoopTimers timers;
  RunLoopSources sources;
  std::vector<std::string> commonModes{std::string(NSDefaultRunLoopMode)};
  bool isDrainingMainQueue = false;
  enum class Run { GoesOn, Stopped };
  // The innermost last.
  std::vector<Run> runs;

 private:
  enum class Turn { Timer, Block, Source };

  static Turn nextTurn(Turn turn) {
    if (turn == Turn::Timer) return Turn::Block;
    return turn == Turn::Block ? Turn::Source : Turn::Timer;
  }

  static std::optional<double> earlier(std::optional<double> left, std::optional<double> right) {
    if (!left || !right) return left ? left : right;
    return std::min(*left, *right);
  }

  // Whether something other than a source could be served without waiting.
  [[nodiscard]] bool isBusy(const RunningMode& mode) const {
    if (queue.hasBlock(mode, !isDrainingMainQueue)) return true;
    const auto next = timers.nextDate(mode);
    return next && *next <= waiter->now();
  }

  bool fireTimer(const RunningMode& mode) {
    if (!timers.nextDate(mode)) return false;
    const auto block = timers.takeDue(mode, waiter->now());
    if (!block) return false;
    callReportingExceptions(*block, "a delayed block of the run loop");
    return true;
  }

  bool runBlock(const RunningMode& mode) {
    const auto entry = queue.take(mode, !isDrainingMainQueue);
    if (!entry) return false;
    const bool wasDraining = isDrainingMainQueue;
    if (entry->isOfMainQueue) isDrainingMainQueue = true;
    callReportingExceptions(entry->block, "a block of the run loop");
    isDrainingMainQueue = wasDraining;
    return true;
  }

  Turn turn_ = Turn::Timer;
};

NSRunLoop::NSRunLoop(std::unique_ptr<EventWaiter> waiter, const SystemClock& clock)
    : state_(std::make_unique<State>(std::move(waiter), clock)) {}

NSRunLoop::~NSRunLoop() = default;

std::shared_ptr<NSRunLoop> NSRunLoop::currentRunLoop() {
  if (isMainThread()) return mainRunLoop();
  thread_local const auto loop =
      std::make_shared<NSRunLoop>(makeEventWaiter(), sharedSystemClock());
  return loop;
}

std::shared_ptr<NSRunLoop> NSRunLoop::mainRunLoop() {
  static const auto& loop = *[] {
    auto made = std::make_shared<NSRunLoop>(makeEventWaiter(), sharedSystemClock());
    made->state_->owner = mainThreadIdentifier();
    made->state_->isOfMainThread = true;
    return new std::shared_ptr<NSRunLoop>(std::move(made));
  }();
  return loop;
}

NSRunLoop::TimerToken NSRunLoop::performAfterDelay(Block block, double seconds,
                                                   const RunLoopModes& modes) {
  if (modes.empty()) return 0;
  // Not a number counts as no delay.
  const double delay = seconds > 0 ? seconds : 0;
  return state_->timers.add(std::move(block), state_->waiter->now() + delay, modes);
}

void NSRunLoop::cancelPerform(TimerToken token) {
  state_->timers.cancel(token);
}

void NSRunLoop::performBlock(Block block, const RunLoopModes& modes) {
  state_->enqueue(std::move(block), modes, false);
}

void NSRunLoop::performBlockAndWait(Block block, const RunLoopModes& modes) {
  if (modes.empty()) return;
  if (std::this_thread::get_id() == state_->owner) {
    callReportingExceptions(block, "a block of the run loop");
    return;
  }
  const auto group = std::make_shared<DispatchGroup>();
  group->enter();
  // Left when the block is released, so that a loop that ends without running it frees the caller.
  std::shared_ptr<const Block> shared(new Block(std::move(block)), [group](const Block* released) {
    delete released;
    group->leave();
  });
  performBlock([shared = std::move(shared)] { (*shared)(); }, modes);
  group->wait();
}

void NSRunLoop::dispatchMainQueue(Block block) {
  state_->enqueue(std::move(block), {NSRunLoopCommonModes}, true);
}

void NSRunLoop::addSource(std::shared_ptr<RunLoopSource> source, const RunLoopModes& modes) {
  state_->sources.add(std::move(source), modes);
}

void NSRunLoop::removeSource(const RunLoopSource& source) {
  state_->sources.remove(source);
}

void NSRunLoop::addCommonMode(RunLoopMode mode) {
  if (!state_->running(mode).isCommon) state_->commonModes.emplace_back(mode);
}

bool NSRunLoop::runModeBeforeDate(RunLoopMode mode, Date limit) {
  const double remaining =
      limit.timeIntervalSinceReferenceDate - state_->clock.now().timeIntervalSinceReferenceDate;
  const double deadline = state_->waiter->now() + std::max(0.0, remaining);
  if (state_->isEmpty(state_->running(mode))) return false;
  while (state_->serveOne(mode, deadline) != State::Served::BlockOrSource) {
    if (state_->waiter->now() >= deadline || state_->isEmpty(state_->running(mode))) break;
  }
  return true;
}

void NSRunLoop::run() {
  state_->runs.push_back(State::Run::GoesOn);
  while (state_->runs.back() == State::Run::GoesOn) {
    (void)state_->serveOne(NSDefaultRunLoopMode, std::nullopt);
  }
  state_->runs.pop_back();
}

void NSRunLoop::stop() {
  if (!state_->runs.empty()) state_->runs.back() = State::Run::Stopped;
}

bool NSRunLoop::runUntil(const std::function<bool()>& done, double seconds, RunLoopMode mode) {
  const double deadline = state_->waiter->now() + std::max(0.0, seconds);
  while (!done()) {
    if (state_->waiter->now() >= deadline) return done();
    (void)state_->serveOne(mode, deadline);
  }
  return true;
}

EventWaiter& NSRunLoop::eventWaiter() {
  return *state_->waiter;
}

bool isMainThread() {
  return std::this_thread::get_id() == mainThreadIdentifier();
}

void dispatchAsyncOnMainQueue(NSRunLoop::Block block) {
  NSRunLoop::mainRunLoop()->dispatchMainQueue(std::move(block));
}

}  // namespace vornix
