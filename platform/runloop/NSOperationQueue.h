#pragma once

#include <functional>
#include <memory>

namespace vornix {

// Runs blocks on worker threads of its own, in the order added, at most `maxConcurrent` at a time.
// With 1, each block starts after the one before has returned. Threads are started when there is
// work, and kept. An exception that leaves a block is reported as a diagnostic. Any thread.
class NSOperationQueue {
 public:
  // Less than 1 counts as 1.
  explicit NSOperationQueue(int maxConcurrentOperationCount);
  NSOperationQueue(const NSOperationQueue&) = delete;
  NSOperationQueue& operator=(const NSOperationQueue&) = delete;
  // Drops the blocks not yet started and waits for those that are running, except for one of them
  // that destroys the queue itself.
  ~NSOperationQueue();

  void addOperation(std::function<void()> block);
  [[nodiscard]] int maxConcurrentOperationCount() const;
  // Blocks until everything added so far has run. Not from inside a block of the queue.
  void waitUntilAllOperationsAreFinished();

 private:
  class State;
  std::shared_ptr<State> state_;
};

}  // namespace vornix
