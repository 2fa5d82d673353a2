#pragma once

#include <cstdlib>

namespace vornix::fuzz {

// Ends a fuzz target whose expectation does not hold, which is how it reports a finding.
inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace vornix::fuzz
