#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/runloop/NSRunLoop.h"

namespace vornix {

// The mode that a loop is running in at present.
struct RunningMode {
  RunLoopMode name;
  bool isCommon = false;
};

// The modes in which a block, timer or source wants to be served.
class RunLoopModeSet {
 public:
  explicit RunLoopModeSet(const RunLoopModes& modes) : names_(modes.begin(), modes.end()) {}

  [[nodiscard]] bool contains(const RunningMode& mode) const {
    return std::any_of(names_.begin(), names_.end(), [&](const std::string& name) {
      return name == mode.name || (mode.isCommon && name == NSRunLoopCommonModes);
    });
  }

 private:
  std::vector<std::string> names_;
};

}  // namespace vornix
