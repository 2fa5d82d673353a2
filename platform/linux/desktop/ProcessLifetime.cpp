#include "platform/desktop/ProcessLifetime.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <ctime>

namespace vornix {
namespace {

constexpr std::int64_t kNever = -1;
constexpr std::int64_t kPatienceSeconds = 1;

// What the signal handler sees; all of it lock-free.
std::atomic<EventWaiter*> watchingWaiter = nullptr;
std::atomic<std::int64_t> firstRequest = kNever;
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

std::int64_t monotonicSeconds() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec;
}

extern "C" void noteTerminationRequest(int /*signal*/) {
  const std::int64_t now = monotonicSeconds();
  std::int64_t first = kNever;
  if (!firstRequest.compare_exchange_strong(first, now) && now - first > kPatienceSeconds) {
    _exit(0);
  }
  if (EventWaiter* const waiter = watchingWaiter) waiter->wake();
}

}  // namespace

void endProcess(int status) {
  _exit(status);
}

void watchTerminationRequests(EventWaiter& waiter) {
  watchingWaiter = &waiter;
  struct sigaction action {};
  action.sa_handler = noteTerminationRequest;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaction(signal, &action, nullptr);
  action.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &action, nullptr);
}

bool terminationWasRequested() {
  return firstRequest != kNever;
}

}  // namespace vornix
