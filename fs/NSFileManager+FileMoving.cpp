#include <string>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "logging/GTMLogger.h"
#include "platform/base/PathText.h"

namespace vornix {
namespace {

// As any other URL the empty path would be the current folder.
NSURL sourceURLOf(std::string_view path, const NSFileManager& files) {
  const auto nothing = path.empty() ? NSURL::URLWithString("file://") : std::nullopt;
  return nothing ? *nothing : NSURL::fileURLWithPath(path, files);
}

bool failedMoving(std::string_view message, const std::optional<NSError>& failure,
                  std::optional<NSError>* error) {
  GTMLogger::sharedLogger()->logFuncError(
      "-[NSFileManager(FileModificationsAdditions) "
      "moveItemAtPath:toPath:createDstIntermediatePath:removeDstPath:error:]",
      message, *failure);
  if (error != nullptr) *error = failure;
  return false;
}

}  // namespace

bool advancedMoveItemAtPath(NSFileManager& self, std::string_view path, std::string_view toPath,
                            std::optional<NSError>* error) {
  const std::string folder = text::deletingLastPathComponent(path);
  if (folder == toPath) {
    GTMLogger::sharedLogger()->logDebug(
        "Make no sense to move to the same folder. Treat as success.");
    return true;
  }
  const std::string toFolder = text::deletingLastPathComponent(toPath);
  tryToUnlockFileIfNeeded(self, folder);
  tryToUnlockFileIfNeeded(self, path);
  tryToUnlockFileIfNeeded(self, toFolder);
  const NSURL source = sourceURLOf(path, self);
  if (toFolder.empty()) return self.trashItemAtURL(source, error);
  const NSURL toFolderURL = NSURL::fileURLWithPath(toFolder, true);
  if (!toFolderURL.checkResourceIsReachableAndReturnError(self, nullptr) &&
      !self.createDirectoryAtURL(toFolderURL, true, error)) {
    return false;
  }
  return self.moveItemAtURL(source, NSURL::fileURLWithPath(toPath, true), error);
}

bool moveItemAtPath(NSFileManager& /*self*/, std::string_view path, std::string_view toPath,
                    bool createDstIntermediatePath, bool removeDstPath,
                    std::optional<NSError>* error) {
  NSFileManager& files = NSFileManager::defaultManager();
  std::optional<NSError> failure;
  if (createDstIntermediatePath) {
    const std::string folder = text::deletingLastPathComponent(toPath);
    bool isDirectory = false;
    if (!files.fileExistsAtPath(folder, &isDirectory) || !isDirectory)
      files.createDirectoryAtPath(folder, true, &failure);
    if (failure) return failedMoving("Creating directory: %@", failure, error);
  }
  if (removeDstPath && files.fileExistsAtPath(toPath)) {
    files.removeItemAtPath(toPath, &failure);
    if (failure) return failedMoving("Removing file: %@", failure, error);
  }
  const bool isMoved = files.moveItemAtPath(path, toPath, &failure);
  return isMoved || failedMoving("Moving file: %@", failure, error);
}

}  // namespace vornix
