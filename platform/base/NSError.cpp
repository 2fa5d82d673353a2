#include "platform/base/NSError.h"

#include <system_error>

#include "platform/base/Format.h"

namespace vornix {

std::string NSError::description() const {
  const std::string text =
      localizedDescription.empty()
          ? text::format("The operation couldn't be completed. (%@ error %ld.)", domain, code)
          : localizedDescription;
  return text::format("Error Domain=%@ Code=%ld \"%@\"", domain, code, text);
}

NSError posixError(int errorNumber, std::string_view what) {
  return NSError{.domain = std::string(NSPOSIXErrorDomain),
                 .code = errorNumber,
                 .localizedDescription =
                     std::string(what) + ": " + std::generic_category().message(errorNumber),
                 .filePath = {},
                 .underlyingErrno = errorNumber};
}

}  // namespace vornix
