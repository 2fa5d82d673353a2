#include "platform/runloop/EventWaiter.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {
namespace {

// Later deadlines are as good as none.
constexpr double kFarAwaySeconds = 1e9;
// Without a descriptor to wake it, a wait looks for itself as often as this.
constexpr int kLookoutMilliseconds = 10;

double monotonicNow() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

timespec roundedUp(double seconds) {
  const auto wholeSeconds = static_cast<time_t>(seconds);
  const auto nanoseconds =
      static_cast<long>((seconds - static_cast<double>(wholeSeconds)) * 1e9) + 1;
  if (nanoseconds >= 1000000000L) return {wholeSeconds + 1, 0};
  return {wholeSeconds, nanoseconds};
}

bool hasDescriptor(std::span<const WaitHandle> handles) {
  return std::ranges::any_of(handles, [](const auto& handle) { return handle.descriptor >= 0; });
}

// A timer that makes its descriptor readable: half as late as the time limit of a `poll`.
class Timer {
 public:
  // The descriptor to wait on; -1 when the system has no timer left.
  int armed(double deadline) {
    if (!descriptor_.isOpen()) {
      descriptor_ = FileDescriptor(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    }
    if (!descriptor_.isOpen()) return -1;
    if (deadline == armedFor_) return descriptor_.get();
    const itimerspec setting{.it_interval = {}, .it_value = roundedUp(deadline)};
    if (timerfd_settime(descriptor_.get(), TFD_TIMER_ABSTIME, &setting, nullptr) != 0) return -1;
    armedFor_ = deadline;
    return descriptor_.get();
  }

 private:
  FileDescriptor descriptor_;
  double armedFor_ = -1;
};

class LinuxEventWaiter final : public EventWaiter {
 public:
  [[nodiscard]] double now() const override { return monotonicNow(); }
  [[nodiscard]] std::vector<std::size_t> wait(std::optional<double> deadline,
                                              std::span<const WaitHandle> handles) override;
  void wake() noexcept override;

 private:
  enum Phase : int { Idle, Waiting, Woken };

  void fill(std::optional<double> deadline, std::span<const WaitHandle> handles, bool mustNotBlock);
  void openWakeUp();
  void drainWakeUp();
  [[nodiscard]] int pollLimit(std::optional<double> deadline, bool mustNotBlock) const;
  [[nodiscard]] std::vector<std::size_t> readyPositions(std::size_t handleCount) const;

  std::atomic<int> phase_ = Idle;
  FileDescriptor wakeUp_;
  bool saidThatItCannotBeWoken_ = false;
  Timer timer_;
  // The caller's handles, then the wake-up, then the timer.
  std::vector<pollfd> polled_;
};

std::vector<std::size_t> LinuxEventWaiter::wait(std::optional<double> deadline,
                                                std::span<const WaitHandle> handles) {
  if (deadline && !(*deadline - now() < kFarAwaySeconds)) return wait(std::nullopt, handles);
  const bool isOver = deadline && *deadline <= now();
  if (!isOver) openWakeUp();
  int expected = Idle;
  const bool wasWoken = !phase_.compare_exchange_strong(expected, Waiting);
  std::vector<std::size_t> ready;
  if (hasDescriptor(handles) || !(isOver || wasWoken)) {
    const bool mustNotBlock = isOver || wasWoken;
    fill(deadline, handles, mustNotBlock);
    while (ready.empty()) {
      const int count = poll(polled_.data(), polled_.size(), pollLimit(deadline, mustNotBlock));
      if (count > 0) ready = readyPositions(handles.size());
      drainWakeUp();
      if (mustNotBlock || phase_ == Woken || (deadline && now() >= *deadline)) break;
    }
  }
  phase_ = Idle;
  return ready;
}

void LinuxEventWaiter::wake() noexcept {
  if (phase_.exchange(Woken) != Waiting || !wakeUp_.isOpen()) return;
  // This may run in a signal handler, whose victim must not see another error number.
  const int savedError = errno;
  const std::uint64_t one = 1;
  (void)!write(wakeUp_.get(), &one, sizeof one);
  errno = savedError;
}

void LinuxEventWaiter::openWakeUp() {
  if (wakeUp_.isOpen()) return;
  wakeUp_ = FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (wakeUp_.isOpen() || std::exchange(saidThatItCannotBeWoken_, true)) return;
  reportDiagnostic("The run loop is woken late: no descriptor could be opened for it");
}

void LinuxEventWaiter::fill(std::optional<double> deadline, std::span<const WaitHandle> handles,
                            bool mustNotBlock) {
  polled_.clear();
  for (const auto& handle : handles) {
    const int events = (handle.wantsRead ? POLLIN : 0) | (handle.wantsWrite ? POLLOUT : 0);
    polled_.push_back({handle.descriptor, static_cast<short>(events), 0});
  }
  polled_.push_back({mustNotBlock ? -1 : wakeUp_.get(), POLLIN, 0});
  polled_.push_back({deadline && !mustNotBlock ? timer_.armed(*deadline) : -1, POLLIN, 0});
}

int LinuxEventWaiter::pollLimit(std::optional<double> deadline, bool mustNotBlock) const {
  if (mustNotBlock) return 0;
  const bool hasWakeUp = polled_[polled_.size() - 2].fd >= 0;
  const bool hasTimer = !deadline || polled_.back().fd >= 0;
  return hasWakeUp && hasTimer ? -1 : kLookoutMilliseconds;
}

// A wake-up that comes while the wait before is ending is left over for this one, where it does not
// count: only the phase tells.
void LinuxEventWaiter::drainWakeUp() {
  if ((polled_[polled_.size() - 2].revents & POLLIN) == 0) return;
  std::uint64_t ignored = 0;
  (void)!read(wakeUp_.get(), &ignored, sizeof ignored);
}

std::vector<std::size_t> LinuxEventWaiter::readyPositions(std::size_t handleCount) const {
  std::vector<std::size_t> ready;
  for (std::size_t position = 0; position < handleCount; ++position) {
    if (polled_[position].revents != 0) ready.push_back(position);
  }
  return ready;
}

}  // namespace

std::unique_ptr<EventWaiter> makeEventWaiter() {
  return std::make_unique<LinuxEventWaiter>();
}

}  // namespace vornix
