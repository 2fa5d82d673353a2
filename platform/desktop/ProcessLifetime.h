#pragma once

#include "platform/runloop/EventWaiter.h"

namespace vornix {

// Ends the process at once with the status: no exit handlers, no destructors, buffered output is
// lost. Any thread.
[[noreturn]] void endProcess(int status);

// From now on a request from outside to end (SIGTERM, SIGINT, SIGHUP) is noted and wakes the
// waiter, which must never be destroyed, instead of ending the process. A request that is repeated
// seconds after the first one ends the process with status 0, whatever it is doing. Writing to a
// pipe that nobody reads becomes an error of the write. Main thread, once.
void watchTerminationRequests(EventWaiter& waiter);
// Any thread.
[[nodiscard]] bool terminationWasRequested();

}  // namespace vornix
