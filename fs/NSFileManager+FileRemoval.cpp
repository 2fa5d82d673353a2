#include <exception>
#include <string>
#include <vector>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "logging/GTMLogger.h"
#include "platform/base/PathText.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {
namespace {

std::optional<std::vector<NSURL>> childrenOf(NSFileManager& files, std::string_view path,
                                             std::optional<NSError>& error) {
  // As a URL the empty path would be the current folder.
  if (!path.empty())
    return files.contentsOfDirectoryAtURL(NSURL::fileURLWithPath(path, files), 0, &error);
  (void)files.contentsOfDirectoryAtPath(path, &error);
  return std::nullopt;
}

}  // namespace

bool truncateFileAtPath(NSFileManager& self, std::string_view path) {
  bool isDirectory = false;
  if (!self.fileExistsAtPath(path, &isDirectory) || isDirectory) return false;
  try {
    const auto handle = NSFileHandle::fileHandleForUpdatingAtPath(path);
    if (!handle) return false;
    handle->truncateFileAtOffset(0);
    handle->closeFile();
    return true;
  } catch (const std::exception& exception) {
    GTMLogger::sharedLogger()->logFuncError(
        "-[NSFileManager(FileModificationsAdditions) truncateFileAtPath:]",
        "Failed to truncate file with exception: %@", exception.what());
    return false;
  }
}

bool removeFileAtPath(NSFileManager& self, std::string_view path, std::optional<NSError>* error) {
  std::optional<NSError> failure;
  if (self.removeItemAtPath(path, &failure) || failure->code == NSFileNoSuchFileError) return true;
  if (failure->code != NSFileWriteNoPermissionError) {
    GTMLogger::sharedLogger()->logDebug("An error occured while removing file at path (%@): %@",
                                        path, *failure);
  }
  tryToUnlockFileIfNeeded(self, text::deletingLastPathComponent(path));
  tryToUnlockFileIfNeeded(self, path);
  const bool isRemoved = self.removeItemAtPath(path, &failure);
  if (error != nullptr) *error = failure;
  return isRemoved;
}

bool tryToUnlockFileIfNeeded(NSFileManager& self, std::string_view path) {
  constexpr const char* kFunction =
      "-[NSFileManager(FileModificationsAdditions) tryToUnlockFileIfNeeded:]";
  std::optional<NSError> error;
  const auto attributes = self.attributesOfItemAtPath(path, &error);
  if (!attributes) {
    GTMLogger::sharedLogger()->logFuncError(
        kFunction, "Failed to get attributes for %@ with error: %@", path, *error);
    return true;
  }
  if (!attributes->isImmutable) return true;
  if (self.setAttributes({{std::string(NSFileImmutable), false}}, path, &error)) return true;
  GTMLogger::sharedLogger()->logFuncError(
      kFunction, "Failed to unset immutable flag for %@ with error: %@", path, *error);
  return false;
}

bool removeContentsOfDirectoryAtPath(NSFileManager& self, std::string_view path) {
  std::optional<NSError> error;
  const auto children = childrenOf(self, path, error);
  if (!children) {
    GTMLogger::sharedLogger()->logDebug(
        "Error: failed to get contents of directory %@ with error %@", path, *error);
    return false;
  }
  bool areAllRemoved = true;
  for (const NSURL& child : *children) {
    const bool isRemoved = removeFileAtPath(self, child.path());
    areAllRemoved = areAllRemoved && isRemoved;
  }
  return areAllRemoved;
}

}  // namespace vornix
