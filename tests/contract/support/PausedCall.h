#pragma once

#include <functional>

namespace vornix::contract {

// Runs `part` on a thread of its own. Each time it is about to make the system call (as
// <sys/syscall.h> names it), it waits while `meanwhile` runs on the caller's thread, which gets the
// number of times before. False, with nothing run, where the kernel offers no such thing.
[[nodiscard]] bool playWithPauses(long call, const std::function<void(int)>& meanwhile,
                                  const std::function<void()>& part);

inline constexpr const char* kMayNotPause =
    "NOT TESTED: the kernel, or what this runs in, lets no program wait for another's system calls";

}  // namespace vornix::contract
