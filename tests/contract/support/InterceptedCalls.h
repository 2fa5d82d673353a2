#pragma once

#include <linux/seccomp.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>

namespace vornix::contract {

// What is done before each of some system calls (as <sys/syscall.h> names them) of the thread that
// this is made on. It is done on another thread, whose calls are its own, while the caller waits.
// Lasts to the end of the process; once in it.
void interceptCalls(std::initializer_list<long> numbers,
                    const std::function<void(const seccomp_data&)>& before);

// What a call's argument points to.
[[nodiscard]] std::string textAt(std::uint64_t argument);

}  // namespace vornix::contract
