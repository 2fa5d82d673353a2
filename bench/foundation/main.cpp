// Measures the foundation's helpers against what else does the same, in one run, and says for each
// whether it is as fast as it has to be. An argument limits it to rows whose name holds that word.
// Ends with status 1 where a bar is missed.
#include <cstdio>
#include <string_view>

#include "bench/foundation/Comparisons.h"

namespace {

using namespace vornix::bench;

template <typename Row>
int missedOf(const std::vector<Row>& rows, std::string_view word) {
  int missed = 0;
  for (const Row& row : rows) {
    const bool isWanted = row.name.find(word) != std::string::npos;
    if (isWanted && !printRow(row)) ++missed;
  }
  return missed;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view word = argc > 1 ? argv[1] : "";
  printHead();
  const int missed = missedOf(digestComparisons(), word) + missedOf(base64Comparisons(), word) +
                     missedOf(escapeComparisons(), word) + missedOf(lockComparisons(), word) +
                     missedOf(allocationCounts(), word);
  if (missed > 0) std::fprintf(stderr, "error: bars missed: %d\n", missed);
  return missed == 0 ? 0 : 1;
}
