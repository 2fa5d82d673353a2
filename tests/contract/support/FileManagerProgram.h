#pragma once

#include <atomic>
#include <string>

#include "tests/contract/support/BusService.h"
#include "tests/support/Journal.h"

namespace vornix::contract {

// A file manager that only notes what it is asked to select.
class FileManagerProgram {
 public:
  FileManagerProgram();

  // From now on.
  std::atomic<bool> refusesAll = false;
  // URLs, and the token that came with each request.
  tests::Journal asked;
  tests::Journal tokens;

 private:
  static int showItems(sd_bus_message* message, void* self, sd_bus_error* error);

  BusService service_;
};

}  // namespace vornix::contract
