#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/NSError.h"

namespace vornix::desktop {

// A program that goes on by itself: a session of its own, no terminal, no descriptor of ours, its
// standard descriptors on /dev/null, signals as a fresh login has them.
struct DetachedProgram {
  // An absolute path.
  std::string path;
  // The program's name and its arguments.
  std::vector<std::string> arguments;
  // "NAME=VALUE".
  std::vector<std::string> environment;
  // A variable that is set to the number of the started process; empty for none.
  std::string processVariable;
  // Empty for ours.
  std::string workingDirectory;
};

// The number of the process, once the program runs in it; it is no child of ours. None and an error
// when it cannot be run. Any thread.
[[nodiscard]] std::optional<std::int32_t> startDetached(const DetachedProgram& program,
                                                        std::optional<NSError>& error);

}  // namespace vornix::desktop
