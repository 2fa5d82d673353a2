#include "platform/runloop/GuardedCall.h"

#include <exception>

#include "platform/base/Diagnostics.h"
#include "platform/base/Format.h"

namespace vornix {

void callReportingExceptions(const std::function<void()>& block, std::string_view place) {
  try {
    block();
  } catch (const std::exception& exception) {
    reportDiagnostic(text::format("An exception left %@: %@", place, exception.what()));
  } catch (...) {
    reportDiagnostic(text::format("An exception of unknown type left %@", place));
  }
}

}  // namespace vornix
