#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "bench/foundation/Comparisons.h"
#include "foundation/VXBoolConditionalLock.h"

namespace vornix::bench {
namespace {

// The least that can hand over: a flag, its mutex and its condition.
class BareLock {
 public:
  void lock() { set(true); }
  void unlock() { set(false); }
  void waitForUnlock() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !isLocked_; });
  }

 private:
  void set(bool isLocked) {
    const std::lock_guard lock(mutex_);
    isLocked_ = isLocked;
    if (!isLocked) changed_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isLocked_ = true;
};

class OurLock {
 public:
  OurLock() { lock(); }
  void lock() { lock_->setBoolValue(true); }
  void unlock() { lock_->setBoolValue(false); }
  void waitForUnlock() { lock_->waitForUnlock(); }

 private:
  std::shared_ptr<VXBoolConditionalLock> lock_ = VXBoolConditionalLock::create();
};

// Two threads wake each other in turn. Whoever wakes up locks again before it wakes the other.
template <typename Lock>
void handOver(std::size_t times) {
  Lock ping;
  Lock pong;
  std::thread other([&] {
    for (std::size_t done = 0; done < times; ++done) {
      ping.waitForUnlock();
      ping.lock();
      pong.unlock();
    }
  });
  for (std::size_t done = 0; done < times; ++done) {
    ping.unlock();
    pong.waitForUnlock();
    pong.lock();
  }
  other.join();
}

}  // namespace

std::vector<Comparison> lockComparisons() {
  return {{"VXBoolConditionalLock hand-over", "bare condition variable", 1.3, handOver<OurLock>,
           handOver<BareLock>, Clock::wall}};
}

}  // namespace vornix::bench
