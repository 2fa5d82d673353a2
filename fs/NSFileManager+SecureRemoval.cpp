#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"

namespace vornix {

bool securelyRemoveFileAtPath(NSFileManager& self, std::string_view path,
                              std::optional<NSError>* error, FileRemover& remover,
                              const NSBundle& texts) {
  tryToUnlockFileIfNeeded(self, path);
  const auto result = remover.removefile(path, REMOVEFILE_RECURSIVE | REMOVEFILE_SECURE_1_PASS);
  if (result.value == 0) return true;
  if (error != nullptr) {
    *error = NSError{.domain = std::string(SecureRemoveErrorDomain),
                     .code = result.value,
                     .localizedDescription = texts.localizedStringForKey(
                         "ErrorDescRemoving_GenericError", "", "Errors")};
  }
  return false;
}

}  // namespace vornix
