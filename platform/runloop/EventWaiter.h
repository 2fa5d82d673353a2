#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vornix {

// A descriptor that a wait also ends on; a negative one never does.
struct WaitHandle {
  int descriptor = -1;
  bool wantsRead = true;
  bool wantsWrite = false;
};

// What a run loop sleeps on: the one operation of it that the operating system must supply.
class EventWaiter {
 public:
  virtual ~EventWaiter() = default;

  // Seconds on a clock that never goes backwards and stands still while the machine sleeps. Any
  // thread. The fake's clock moves only in `wait`.
  [[nodiscard]] virtual double now() const = 0;

  // Blocks until `wake` is called, a handle is ready or has failed, or `now()` reaches `deadline`
  // (none: no limit). Never returns before the deadline without one of the other two. Answers the
  // positions in `handles` that are ready. Owning thread only.
  [[nodiscard]] virtual std::vector<std::size_t> wait(std::optional<double> deadline,
                                                      std::span<const WaitHandle> handles) = 0;

  // Ends the present wait, or the next one when none is going on. Several calls before a wait
  // count once. Any thread, and signal handlers.
  virtual void wake() noexcept = 0;
};

[[nodiscard]] std::unique_ptr<EventWaiter> makeEventWaiter();

}  // namespace vornix
