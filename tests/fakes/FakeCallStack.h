#pragma once

#include <string>
#include <vector>

#include "platform/system/CallStack.h"

namespace vornix::fakes {

// A stack of three calls, of which a library's has no name.
inline std::vector<std::string> fakeCallStackSymbols() {
  return {"0   program                             0x0000000000401136 cook(int) + 22",
          "1   libkitchen.so.1                     0x00007f0000001a40 0x7f0000000000 + 6720",
          "2   program                             0x0000000000401200 main + 64"};
}

}  // namespace vornix::fakes
