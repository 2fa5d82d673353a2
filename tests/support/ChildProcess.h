#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace vornix::tests {

// A program that a test started; ended by its id, also when the test dies.
class ChildProcess {
 public:
  struct Descriptor {
    int here = -1;
    int there = -1;
  };

  // `arguments` begins with the program, searched in the path and in the administration folders.
  // The child gets `descriptors` under their numbers `there`, and
  // `variables` ("NAME=value") on top of the environment. Throws when the program is missing.
  explicit ChildProcess(const std::vector<std::string>& arguments,
                        const std::vector<Descriptor>& descriptors = {},
                        const std::vector<std::string>& variables = {});
  // Asks it to end and waits until it has.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t processIdentifier() const { return pid_; }
  // Its exit status; 128 and the signal's number where a signal ended it.
  int wait();
  void terminate();

 private:
  pid_t pid_ = -1;
};

}  // namespace vornix::tests
