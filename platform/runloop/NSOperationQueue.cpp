#include "platform/runloop/NSOperationQueue.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"
#include "platform/base/Mutex.h"
#include "platform/runloop/GuardedCall.h"

namespace vornix {

// Shared with the workers, one of which may outlive the queue that it destroys.
class NSOperationQueue::State : public std::enable_shared_from_this<State> {
 public:
  explicit State(int maxConcurrent) : maxConcurrent_(std::max(1, maxConcurrent)) {}

  [[nodiscard]] int maxConcurrent() const { return maxConcurrent_; }

  void add(std::function<void()> block) {
    const Lock lock(mutex_);
    waiting_.push_back({++lastNumber_, std::move(block)});
    if (idleWorkers_ >= waiting_.size()) {
      changed_.notifyAll();
    } else if (workers_.size() < static_cast<std::size_t>(maxConcurrent_)) {
      startWorker();
    }
  }

  void waitUntilFinished() {
    const Lock lock(mutex_);
    const std::uint64_t last = lastNumber_;
    while (oldestUnfinished() <= last) changed_.wait(mutex_);
  }

  void end() {
    std::deque<Operation> dropped;
    std::vector<std::thread> workers;
    {
      const Lock lock(mutex_);
      isEnding_ = true;
      dropped.swap(waiting_);
      workers.swap(workers_);
      changed_.notifyAll();
    }
    dropped.clear();
    for (auto& worker : workers) {
      if (worker.get_id() == std::this_thread::get_id()) {
        worker.detach();
      } else {
        worker.join();
      }
    }
  }

 private:
  struct Operation {
    std::uint64_t number = 0;
    std::function<void()> block;
  };

  // A worker that cannot be started leaves the work to those there are, or to the next attempt.
  void startWorker() VORNIX_REQUIRES(mutex_) {
    try {
      workers_.emplace_back([state = shared_from_this()] { state->work(); });
    } catch (const std::system_error& error) {
      reportDiagnostic(
          text::format("No thread could be started for queued work: %@", error.what()));
    }
  }

  void work() {
    while (auto operation = nextOperation()) {
      callReportingExceptions(operation->block, "a block of an operation queue");
      operation->block = nullptr;
      finish(operation->number);
    }
  }

  // None when the queue ends.
  std::optional<Operation> nextOperation() {
    const Lock lock(mutex_);
    ++idleWorkers_;
    while (!isEnding_ && waiting_.empty()) changed_.wait(mutex_);
    --idleWorkers_;
    if (isEnding_) return std::nullopt;
    Operation operation = std::move(waiting_.front());
    waiting_.pop_front();
    running_.push_back(operation.number);
    return operation;
  }

  void finish(std::uint64_t number) {
    const Lock lock(mutex_);
    std::erase(running_, number);
    changed_.notifyAll();
  }

  [[nodiscard]] std::uint64_t oldestUnfinished() const VORNIX_REQUIRES(mutex_) {
    std::uint64_t oldest = waiting_.empty() ? lastNumber_ + 1 : waiting_.front().number;
    for (const std::uint64_t number : running_) oldest = std::min(oldest, number);
    return oldest;
  }

  const int maxConcurrent_;
  Mutex mutex_;
  Condition changed_;
  std::deque<Operation> waiting_ VORNIX_GUARDED_BY(mutex_);
  std::vector<std::uint64_t> running_ VORNIX_GUARDED_BY(mutex_);
  std::vector<std::thread> workers_ VORNIX_GUARDED_BY(mutex_);
  std::uint64_t lastNumber_ VORNIX_GUARDED_BY(mutex_) = 0;
  std::size_t idleWorkers_ VORNIX_GUARDED_BY(mutex_) = 0;
  bool isEnding_ VORNIX_GUARDED_BY(mutex_) = false;
};

NSOperationQueue::NSOperationQueue(int maxConcurrentOperationCount)
    : state_(std::make_shared<State>(maxConcurrentOperationCount)) {}

NSOperationQueue::~NSOperationQueue() {
  state_->end();
}

void NSOperationQueue::addOperation(std::function<void()> block) {
  state_->add(std::move(block));
}

int NSOperationQueue::maxConcurrentOperationCount() const {
  return state_->maxConcurrent();
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() {
  state_->waitUntilFinished();
}

}  // namespace vornix
