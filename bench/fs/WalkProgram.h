#pragma once

#include <string>
#include <vector>

namespace vornix::bench {

// The argument that makes this program walk through a folder and do nothing else.
inline constexpr const char* kWalkCommand = "--walk";
int walkAsProgram(const std::string& folder);
// The same for removing it.
inline constexpr const char* kRemoveCommand = "--remove";
int removeAsProgram(const std::string& tree);

// Runs a program to its end with nothing printed; false when that is not there or fails.
bool runProgram(const std::vector<std::string>& arguments);
// This program's own path.
std::string ownPath();
// The system calls that a run of this program makes to walk through a folder, start and end left
// out; 0 where strace is not there.
std::size_t systemCallsOfWalk(const std::string& folder);

}  // namespace vornix::bench
