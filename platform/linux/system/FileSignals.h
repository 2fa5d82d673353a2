#pragma once

#include <csignal>

namespace vornix {

// While it lives, this thread's writes to a pipe that nobody reads or beyond the size limit of
// files fail with an error number, where the system would also kill the process. Leaves `errno`.
class FileSignalsAsErrors {
 public:
  FileSignalsAsErrors();
  FileSignalsAsErrors(const FileSignalsAsErrors&) = delete;
  FileSignalsAsErrors& operator=(const FileSignalsAsErrors&) = delete;
  ~FileSignalsAsErrors();

 private:
  sigset_t previous_;
};

}  // namespace vornix
