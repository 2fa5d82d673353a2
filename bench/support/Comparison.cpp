#include "bench/support/Comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <tuple>
#include <vector>

namespace vornix::bench {
namespace {

constexpr double kShortestBatchSeconds = 2e-3;

double now(Clock clock) {
  if (clock == Clock::processor) return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double secondsOf(const Comparison& comparison, const std::function<void(std::size_t)>& side,
                 std::size_t times) {
  comparison.prepare();
  const double started = now(comparison.clock);
  side(times);
  return now(comparison.clock) - started;
}

std::size_t timesOfABatch(const Comparison& comparison) {
  for (std::size_t times = 1;; times *= 2) {
    const double shorter = std::min(secondsOf(comparison, comparison.ours, times),
                                    secondsOf(comparison, comparison.theirs, times));
    if (shorter >= kShortestBatchSeconds) return times;
  }
}

std::vector<double> sortedRatios(const Comparison& comparison) {
  const std::size_t times = timesOfABatch(comparison);
  std::vector<double> ratios;
  for (std::size_t pair = 0; pair < comparison.pairs; ++pair) {
    const bool weBegin = pair % 2 == 0;
    const auto& [first, second] = weBegin ? std::tie(comparison.ours, comparison.theirs)
                                          : std::tie(comparison.theirs, comparison.ours);
    const double firstSeconds = secondsOf(comparison, first, times);
    const double secondSeconds = secondsOf(comparison, second, times);
    ratios.push_back(weBegin ? firstSeconds / secondSeconds : secondSeconds / firstSeconds);
  }
  std::ranges::sort(ratios);
  return ratios;
}

}  // namespace

void printHead() {
  std::printf("time of ours / time of the other: median and middle fifth of alternating pairs\n\n");
  std::printf("%-34s %-26s %6s %6s  %-12s\n", "ours", "the other", "bar", "ratio", "middle fifth");
}

bool printRow(const Comparison& comparison) {
  const std::vector<double> ratios = sortedRatios(comparison);
  const std::size_t pairs = ratios.size();
  const double median = ratios[pairs / 2];
  const bool holds = median <= comparison.bar;
  std::printf("%-34s %-26s %6.2f %6.2f  %.2f to %.2f  %s\n", comparison.name.c_str(),
              comparison.peer.c_str(), comparison.bar, median, ratios[pairs * 2 / 5],
              ratios[pairs * 3 / 5], holds ? "holds" : "MISSED");
  std::fflush(stdout);
  return holds;
}

bool printRow(const Count& count) {
  const std::size_t counted = count.count();
  const bool holds = counted == count.expected;
  std::printf("%-61s %6zu %6zu  %12s  %s\n", count.name.c_str(), count.expected, counted, "",
              holds ? "holds" : "MISSED");
  return holds;
}

bool printRow(const Rate& rate) {
  const double found = rate.rate();
  const bool holds = found <= rate.bar;
  std::printf("%-61s %6.2f %6.2f  %12s  %s\n", rate.name.c_str(), rate.bar, found, "",
              holds ? "holds" : "MISSED");
  std::fflush(stdout);
  return holds;
}

}  // namespace vornix::bench
