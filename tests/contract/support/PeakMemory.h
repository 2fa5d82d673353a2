#pragma once

#include <sys/resource.h>

namespace vornix::contract {

// How much more memory this process has had at once than before this was made.
class PeakMemory {
 public:
  [[nodiscard]] long growthInKilobytes() const { return peak() - before_; }

 private:
  static long peak() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }
  const long before_ = peak();
};

}  // namespace vornix::contract
