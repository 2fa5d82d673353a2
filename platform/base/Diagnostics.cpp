#include "platform/base/Diagnostics.h"

#include <cstdio>
#include <memory>
#include <utility>

#include "platform/base/Mutex.h"

namespace vornix {
namespace {

using Receiver = std::function<void(std::string_view)>;

struct Registration {
  Mutex mutex;
  std::shared_ptr<const Receiver> receiver VORNIX_GUARDED_BY(mutex);
};

// Never destroyed: threads may report until the process ends.
Registration& registration() {
  static auto& shared = *new Registration;
  return shared;
}

}  // namespace

void reportDiagnostic(std::string_view line) {
  std::shared_ptr<const Receiver> receiver;
  {
    const Lock lock(registration().mutex);
    receiver = registration().receiver;
  }
  if (receiver) {
    (*receiver)(line);
    return;
  }
  const std::string whole = std::string(line) + "\n";
  std::fwrite(whole.data(), 1, whole.size(), stderr);
}

void setDiagnosticReceiver(Receiver receiver) {
  auto replacement = receiver ? std::make_shared<const Receiver>(std::move(receiver)) : nullptr;
  const Lock lock(registration().mutex);
  registration().receiver = std::move(replacement);
}

}  // namespace vornix
