#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace vornix::bench {

// What counts: time on the processor, which other programs do not disturb, or time with all
// waiting.
enum class Clock { processor, wall };

// Two ways to do the same, each done as often as it is told.
struct Comparison {
  std::string name;
  std::string peer;
  // Our time may be at most that many times the peer's.
  double bar = 1;
  std::function<void(std::size_t times)> ours;
  std::function<void(std::size_t times)> theirs;
  Clock clock = Clock::processor;
};

// A number that has to be what it is told.
struct Count {
  std::string name;
  std::size_t expected = 0;
  std::function<std::size_t()> count;
};

// Each prints a row; false where the bar does not hold. The two sides take turns in going first.
void printHead();
bool printRow(const Comparison& comparison);
bool printRow(const Count& count);

// The compiler must not leave out what made it.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

// `operation` with its answer kept, as often as wanted.
template <typename Operation>
std::function<void(std::size_t)> repeated(Operation operation) {
  return [operation](std::size_t times) {
    for (std::size_t done = 0; done < times; ++done) keep(operation());
  };
}

std::vector<Comparison> digestComparisons();
std::vector<Comparison> base64Comparisons();
std::vector<Comparison> escapeComparisons();
std::vector<Comparison> lockComparisons();
std::vector<Count> allocationCounts();

}  // namespace vornix::bench
