#include "tests/fakes/FakeTask.h"

namespace vornix {

fakes::FakePrograms& fakes::processPrograms() {
  static auto& programs = *new FakePrograms;
  return programs;
}

std::unique_ptr<NSTask> makeTask() {
  return std::make_unique<fakes::FakeTask>(fakes::processPrograms());
}

}  // namespace vornix
