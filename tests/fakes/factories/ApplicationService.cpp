#include "tests/fakes/FakeApplicationService.h"

namespace vornix {

fakes::FakeApplicationService& fakes::processApplications() {
  static auto& service = *new FakeApplicationService;
  return service;
}

ApplicationService& sharedApplicationService() {
  return fakes::processApplications();
}

}  // namespace vornix
