#include <exception>

#include "fs/NSFileManager+FileModificationsAdditions.h"
#include "logging/GTMLogger.h"

namespace vornix {
namespace {

bool walk(FileHierarchy& hierarchy, bool recursive, const WalkHandler& handler) {
  // The folder itself is not told.
  (void)hierarchy.read();
  bool stop = false;
  while (!stop) {
    const HierarchyEntry* entry = hierarchy.read();
    if (entry == nullptr) return true;
    if (!recursive) hierarchy.skip();
    if (entry->kind == HierarchyKind::folderEnd) continue;
    if (entry->kind == HierarchyKind::error) return false;
    handler(entry->path, entry->kind == HierarchyKind::folder, stop);
  }
  return true;
}

void close(FileHierarchy& hierarchy) {
  try {
    hierarchy.close();
  } catch (const std::exception& exception) {
    GTMLogger::sharedLogger()->logDebug("fts_close exception = %@", exception.what());
  }
}

}  // namespace

bool com_orvane_FTSWalkAtPath(const NSFileManager& self, std::string_view path, bool recursive,
                              const WalkHandler& handler) {
  if (!handler || path.empty()) return false;
  const WalkHandler copy = handler;
  const auto hierarchy = self.hierarchyAtPath(path, {.noStatus = true, .noCrossing = true});
  if (!hierarchy) return false;
  const bool finished = walk(*hierarchy, recursive, copy);
  close(*hierarchy);
  return finished;
}

}  // namespace vornix
