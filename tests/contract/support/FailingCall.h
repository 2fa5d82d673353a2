#pragma once

namespace vornix::contract {

// From now on a system call (as <sys/syscall.h> names it) does nothing in this process but fail
// with the error.
void failSystemCall(long number, int error);

}  // namespace vornix::contract
