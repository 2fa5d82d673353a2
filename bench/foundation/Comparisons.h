#pragma once

#include <vector>

#include "bench/support/Comparison.h"

namespace vornix::bench {

std::vector<Comparison> digestComparisons();
std::vector<Comparison> base64Comparisons();
std::vector<Comparison> escapeComparisons();
std::vector<Comparison> lockComparisons();
std::vector<Count> allocationCounts();

}  // namespace vornix::bench
