#pragma once

#include <linux/seccomp.h>

#include <functional>
#include <initializer_list>
#include <memory>

namespace vornix::contract {

// What is done before each of some system calls (as <sys/syscall.h> names them) of the thread that
// this is made on. It is done on another thread, whose calls are its own, while the caller waits;
// what the call's arguments point to can be looked at. Lasts to the end of the process; once in it.
void interceptCalls(std::initializer_list<long> numbers,
                    const std::function<void(const seccomp_data&)>& before);

}  // namespace vornix::contract
