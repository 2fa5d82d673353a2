#include "platform/runloop/ThreadPriority.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

#include "platform/base/Diagnostics.h"
#include "platform/base/NSError.h"

namespace vornix {
namespace {

constexpr int kLowest = 19;

// Here a thread's number names that thread alone, although the call speaks of processes.
id_t callingThread() {
  return static_cast<id_t>(gettid());
}

class LinuxThreadPriority final : public ThreadPriority {
 public:
  void lowerToBackground() override {
    if (setpriority(PRIO_PROCESS, callingThread(), kLowest) == 0) return;
    reportDiagnostic(posixError(errno, "The priority of a background thread could not be lowered")
                         .localizedDescription);
  }

  [[nodiscard]] bool isBackground() const override {
    return getpriority(PRIO_PROCESS, callingThread()) == kLowest;
  }
};

}  // namespace

ThreadPriority& sharedThreadPriority() {
  static auto& priority = *new LinuxThreadPriority;
  return priority;
}

}  // namespace vornix
