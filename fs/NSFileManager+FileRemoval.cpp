#include <exception>
#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "logging/GTMLogger.h"
#include "platform/base/PathText.h"
#include "platform/system/NSFileHandle.h"

namespace vornix {
namespace {

// `remove` is one attempt.
template <typename Remove>
bool removeUnlocking(NSFileManager& files, std::string_view path, Remove remove,
                     std::optional<NSError>* error) {
  std::optional<NSError> failure;
  if (remove(&failure) || failure->code == NSFileNoSuchFileError) return true;
  if (failure->code != NSFileWriteNoPermissionError) {
    GTMLogger::sharedLogger()->logDebug("An error occured while removing file at path (%@): %@",
                                        path, *failure);
  }
  tryToUnlockFileIfNeeded(files, text::deletingLastPathComponent(path));
  tryToUnlockFileIfNeeded(files, path);
  const bool isRemoved = remove(&failure);
  if (error != nullptr) *error = failure;
  return isRemoved;
}

// As a URL the empty path would be the current folder.
std::string wholePath(std::string_view path, const NSFileManager& files) {
  return path.empty() ? std::string() : NSURL::fileURLWithPath(path, files).path();
}

// Children are removed from the folder that was listed, whatever comes to stand at its path.
bool removeChild(NSFileManager& files, HeldFolder& folder, const std::string& name) {
  const std::string path = text::appendingPathComponent(folder.path(), name);
  return removeUnlocking(
      files, path,
      [&](std::optional<NSError>* failure) {
        return NSFileManager::removeItem(name, folder, failure);
      },
      nullptr);
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
  return removeUnlocking(
      self, path,
      [&](std::optional<NSError>* failure) { return self.removeItemAtPath(path, failure); }, error);
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
  std::string names;
  const auto folder = self.holdDirectoryAtPath(wholePath(path, self), names, &error);
  if (!folder) {
    GTMLogger::sharedLogger()->logDebug(
        "Error: failed to get contents of directory %@ with error %@", path, *error);
    return false;
  }
  bool areAllRemoved = true;
  for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
    const bool isRemoved = removeChild(self, *folder, names.c_str() + at);
    areAllRemoved = areAllRemoved && isRemoved;
  }
  return areAllRemoved;
}

}  // namespace vornix
