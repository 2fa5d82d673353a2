#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// Which mutex guards what, in words that Clang checks. Other compilers read nothing here.
#if defined(__clang__)
#define VORNIX_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define VORNIX_THREAD_SAFETY(attribute)
#endif

// Only whoever holds the mutex reads or writes this member.
#define VORNIX_GUARDED_BY(mutex) VORNIX_THREAD_SAFETY(guarded_by(mutex))
// Only whoever holds the mutex calls this function.
#define VORNIX_REQUIRES(mutex) VORNIX_THREAD_SAFETY(requires_capability(mutex))
// This class, function or scope is, takes or gives back a mutex.
#define VORNIX_MUTEX VORNIX_THREAD_SAFETY(capability("mutex"))
#define VORNIX_SCOPED_LOCK VORNIX_THREAD_SAFETY(scoped_lockable)
#define VORNIX_ACQUIRE(...) VORNIX_THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define VORNIX_RELEASE(...) VORNIX_THREAD_SAFETY(release_capability(__VA_ARGS__))

namespace vornix {

// The standard library's, as something that can guard.
template <typename Standard>
class VORNIX_MUTEX BasicMutex {
 public:
  void lock() VORNIX_ACQUIRE() { mutex_.lock(); }
  void unlock() VORNIX_RELEASE() { mutex_.unlock(); }

 private:
  friend class Condition;
  Standard mutex_;
};

using Mutex = BasicMutex<std::mutex>;
// May be taken again by the thread that holds it.
using RecursiveMutex = BasicMutex<std::recursive_mutex>;

// Holds a mutex as long as it lives.
template <typename Held>
class VORNIX_SCOPED_LOCK [[nodiscard]] Lock {
 public:
  explicit Lock(Held& mutex) VORNIX_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~Lock() VORNIX_RELEASE() { mutex_.unlock(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  Held& mutex_;
};

// Something under a mutex that threads wait for. They may wake up without it: ask again in a loop.
class Condition {
 public:
  // The mutex is given back meanwhile, and held again afterwards.
  void wait(Mutex& mutex) VORNIX_REQUIRES(mutex) {
    std::unique_lock lock(mutex.mutex_, std::adopt_lock);
    changed_.wait(lock);
    lock.release();
  }

  // The same until the wall clock reaches the time at the most; false when it has.
  [[nodiscard]] bool waitUntil(Mutex& mutex, std::chrono::system_clock::time_point deadline)
      VORNIX_REQUIRES(mutex) {
    std::unique_lock lock(mutex.mutex_, std::adopt_lock);
    const bool inTime = changed_.wait_until(lock, deadline) == std::cv_status::no_timeout;
    lock.release();
    return inTime;
  }

  void notifyAll() { changed_.notify_all(); }

 private:
  std::condition_variable changed_;
};

}  // namespace vornix
