#pragma once

namespace vornix {

// How a thread stands back for others where the processor is short.
class ThreadPriority {
 public:
  virtual ~ThreadPriority() = default;

  // Gives the calling thread, and none of those there are besides, the lowest priority for good.
  // Where the system refuses, the thread goes on as it was, and that is reported.
  virtual void lowerToBackground() = 0;
  // Whether the calling thread has the lowest priority.
  [[nodiscard]] virtual bool isBackground() const = 0;
};

// The process's own. Any thread.
[[nodiscard]] ThreadPriority& sharedThreadPriority();

}  // namespace vornix
