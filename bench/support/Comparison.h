#pragma once

#include <cstddef>
#include <functional>
#include <string>

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
  // How often both are done; odd.
  std::size_t pairs = 101;
  // Done before each side's turn, outside of its time.
  std::function<void()> prepare = [] {};
};

// A number that has to be what it is told.
struct Count {
  std::string name;
  std::size_t expected = 0;
  std::function<std::size_t()> count;
};

// A number that may be at most what it is told.
struct Rate {
  std::string name;
  double bar = 0;
  std::function<double()> rate;
};

// Each prints a row; false where the bar does not hold. The two sides take turns in going first.
void printHead();
bool printRow(const Comparison& comparison);
bool printRow(const Count& count);
bool printRow(const Rate& rate);

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

}  // namespace vornix::bench
