#include "platform/linux/system/FileSignals.h"

#include <cerrno>
#include <ctime>
#include <initializer_list>

namespace vornix {
namespace {

sigset_t onlySignal(int number) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, number);
  return set;
}

void takeOff(int number) {
  const sigset_t signal = onlySignal(number);
  constexpr timespec kNoWait{};
  sigtimedwait(&signal, nullptr, &kNoWait);
}

}  // namespace

FileSignalsAsErrors::FileSignalsAsErrors() {
  sigset_t set = onlySignal(SIGPIPE);
  sigaddset(&set, SIGXFSZ);
  pthread_sigmask(SIG_BLOCK, &set, &previous_);
}

FileSignalsAsErrors::~FileSignalsAsErrors() {
  const int error = errno;
  sigset_t pending;
  sigpending(&pending);
  for (const int number : {SIGPIPE, SIGXFSZ}) {
    // A signal that was blocked before belongs to whoever blocked it.
    const bool ours = sigismember(&previous_, number) == 0;
    if (ours && sigismember(&pending, number) != 0) takeOff(number);
  }
  pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  errno = error;
}

}  // namespace vornix
