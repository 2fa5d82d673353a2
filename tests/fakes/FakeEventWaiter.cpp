#include "tests/fakes/FakeEventWaiter.h"

#include <utility>

namespace vornix::fakes {

std::vector<std::size_t> FakeEventWaiter::wait(std::optional<double> deadline,
                                               std::span<const WaitHandle> handles) {
  runNextAction();
  std::unique_lock lock(mutex_);
  waits_.push_back(deadline);
  const auto isOver = [&] {
    return isWoken_ || (deadline && now() >= *deadline) || !readyPositions(handles).empty();
  };
  if (deadline && !isHeld_ && !isOver()) {
    clock_.setNow(clock_.now().addingTimeInterval(*deadline - now()));
    clock_.setSystemUptime(*deadline);
  }
  changed_.wait(lock, isOver);
  isWoken_ = false;
  return readyPositions(handles);
}

void FakeEventWaiter::wake() noexcept {
  const std::lock_guard lock(mutex_);
  isWoken_ = true;
  changed_.notify_all();
}

void FakeEventWaiter::atNextWait(std::function<void()> action) {
  const std::lock_guard lock(mutex_);
  actions_.push_back(std::move(action));
}

void FakeEventWaiter::holdTime(bool held) {
  const std::lock_guard lock(mutex_);
  isHeld_ = held;
}

void FakeEventWaiter::advance(double seconds) {
  const std::lock_guard lock(mutex_);
  clock_.advance(seconds);
  changed_.notify_all();
}

void FakeEventWaiter::setReady(int descriptor, bool ready) {
  const std::lock_guard lock(mutex_);
  if (ready) {
    ready_.insert(descriptor);
  } else {
    ready_.erase(descriptor);
  }
  changed_.notify_all();
}

std::vector<std::optional<double>> FakeEventWaiter::waits() const {
  const std::lock_guard lock(mutex_);
  return waits_;
}

std::vector<std::size_t> FakeEventWaiter::readyPositions(
    std::span<const WaitHandle> handles) const {
  std::vector<std::size_t> positions;
  for (std::size_t position = 0; position < handles.size(); ++position) {
    if (ready_.contains(handles[position].descriptor)) positions.push_back(position);
  }
  return positions;
}

void FakeEventWaiter::runNextAction() {
  std::function<void()> action;
  {
    const std::lock_guard lock(mutex_);
    if (actions_.empty()) return;
    action = std::move(actions_.front());
    actions_.pop_front();
  }
  action();
}

FakeEventWaiter& waiterOf(NSRunLoop& loop) {
  return dynamic_cast<FakeEventWaiter&>(loop.eventWaiter());
}

}  // namespace vornix::fakes
