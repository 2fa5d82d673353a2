#include "tests/fakes/FakeCallStack.h"

namespace vornix {

std::vector<std::string> callStackSymbols() {
  return fakes::fakeCallStackSymbols();
}

}  // namespace vornix
