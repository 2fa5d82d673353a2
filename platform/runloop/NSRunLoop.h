#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Date.h"
#include "platform/runloop/EventWaiter.h"
#include "platform/system/SystemClock.h"

namespace vornix {

// A set of timers and sources that is served while a loop runs in it.
using RunLoopMode = std::string_view;
inline constexpr RunLoopMode NSDefaultRunLoopMode = "kCFRunLoopDefaultMode";
// Stands for every mode that is marked as common: the default one, and those a loop was told of.
inline constexpr RunLoopMode NSRunLoopCommonModes = "kCFRunLoopCommonModes";

using RunLoopModes = std::vector<RunLoopMode>;

// Something outside the process that a loop waits for, such as a connection. All operations are
// called on the loop's thread. A source is not served again from inside its own `perform`, however
// often that runs the loop; what must go on there belongs into a block that `perform` queues.
class RunLoopSource {
 public:
  virtual ~RunLoopSource() = default;

  // Asked before every wait.
  [[nodiscard]] virtual WaitHandle handle() const = 0;
  // Seconds from now at which the source wants to be served although its handle is silent; 0 for
  // at once, none for never.
  [[nodiscard]] virtual std::optional<double> timeout() const { return std::nullopt; }
  virtual void perform() = 0;
};

// One thread's event loop. Blocks run in the order in which they were queued; timers in the order
// of their dates. Re-entrant: a block, timer or source may run the loop again. An exception that
// leaves a block ends with the block and is reported as a diagnostic. With an empty list of modes
// nothing is ever run: such a block is released at once.
class NSRunLoop {
 public:
  using Block = std::function<void()>;
  using TimerToken = std::uint64_t;

  NSRunLoop(std::unique_ptr<EventWaiter> waiter, const SystemClock& clock);
  NSRunLoop(const NSRunLoop&) = delete;
  NSRunLoop& operator=(const NSRunLoop&) = delete;
  ~NSRunLoop();

  // The calling thread's loop, made on first use; it lives as long as the thread or its last user.
  [[nodiscard]] static std::shared_ptr<NSRunLoop> currentRunLoop();
  // The main thread's loop. Never destroyed.
  [[nodiscard]] static std::shared_ptr<NSRunLoop> mainRunLoop();

  // Runs `block` once, `seconds` from now at the earliest, when the loop runs in one of the modes;
  // a delay of 0 still waits for the loop. The block and what it holds are released after it ran.
  // Owning thread only.
  TimerToken performAfterDelay(Block block, double seconds,
                               const RunLoopModes& modes = {NSDefaultRunLoopMode});
  // No effect once it ran. Owning thread only.
  void cancelPerform(TimerToken token);

  // Queues `block` for the loop in one of the modes. Any thread.
  void performBlock(Block block, const RunLoopModes& modes = {NSRunLoopCommonModes});
  // The same, and waits until it ran. On the loop's own thread it runs at once. Any thread.
  void performBlockAndWait(Block block, const RunLoopModes& modes = {NSRunLoopCommonModes});

  // Queues `block` on the main queue, which this loop drains in the common modes when it is the
  // main thread's; not drained from inside a block of the main queue. Any thread.
  void dispatchMainQueue(Block block);

  // A source is served in the given modes until removed; adding it again replaces its modes. Owning
  // thread only.
  void addSource(std::shared_ptr<RunLoopSource> source,
                 const RunLoopModes& modes = {NSRunLoopCommonModes});
  void removeSource(const RunLoopSource& source);

  // Owning thread only.
  void addCommonMode(RunLoopMode mode);

  // One pass: returns after the first source, queued block or main-queue block was served, at the
  // wall-clock date, or when its last timer has fired and nothing else is left to wait for; timers
  // alone do not end it. False, at once, when the mode has no source, block or timer; the main
  // thread's loop always has its main queue in the common modes. Owning thread only.
  bool runModeBeforeDate(RunLoopMode mode, Date limit);

  // Turns in the default mode until `stop`, sleeping when there is nothing to do. Owning thread
  // only; may be nested, `stop` ends the innermost `run` once what it serves has returned.
  void run();
  void stop();

  // Turns in the mode until `done` answers true or `seconds` have passed; answers `done`. The
  // condition is asked after each thing served. Owning thread only.
  bool runUntil(const std::function<bool()>& done, double seconds,
                RunLoopMode mode = NSDefaultRunLoopMode);

  // What the loop sleeps on.
  [[nodiscard]] EventWaiter& eventWaiter();

 private:
  class State;
  std::unique_ptr<State> state_;
};

// True on the thread that started the program.
[[nodiscard]] bool isMainThread();

// Queues `block` on the main queue of the main run loop. Any thread.
void dispatchAsyncOnMainQueue(NSRunLoop::Block block);

}  // namespace vornix
