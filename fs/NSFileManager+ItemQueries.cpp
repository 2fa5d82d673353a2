#include <string>
#include <utility>

#include "fs/NSFileManager+Additions.h"
#include "fs/RootlessAttribute.h"

namespace vornix {

bool isFileDirectoryAtPath(const NSFileManager& /*self*/, std::string_view path) {
  const auto status = NSFileManager::defaultManager().attributesOfItemAtPath(path);
  return status && status->type == FileType::directory;
}

bool isFileRestricted(const NSFileManager& /*self*/, std::string_view path,
                      const FileAttributes& attributes) {
  FileDetails details;
  return attributes.details(path, details) == 0 && (details.flags & SF_RESTRICTED) != 0;
}

bool isFileProtectedByRootless(const NSFileManager& /*self*/, std::string_view path,
                               const FileAttributes& attributes) {
  std::string names;
  if (path.empty() || attributes.extendedAttributeNames(path, names) != 0) return false;
  return holdsRootlessAttribute(std::move(names));
}

}  // namespace vornix
