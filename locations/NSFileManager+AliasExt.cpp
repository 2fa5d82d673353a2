#include "locations/NSFileManager+AliasExt.h"

#include <optional>

#include "logging/GTMLogger.h"

namespace vornix {

std::string resolvedOriginalPath(const NSFileManager& self, std::string_view path) {
  std::optional<NSError> error;
  const auto attributes = self.attributesOfItemAtPath(path, &error);
  if (attributes && attributes->type == FileType::symbolicLink) {
    auto destination = self.destinationOfSymbolicLinkAtPath(path);
    if (destination && self.fileExistsAtPath(*destination)) return *std::move(destination);
    GTMLogger::sharedLogger()->logDebug("File not exists at destination %@", destination);
  } else if (error) {
    GTMLogger::sharedLogger()->logDebug("Error resolving path (%@): %@", path, *error);
  }
  return std::string(path);
}

}  // namespace vornix
