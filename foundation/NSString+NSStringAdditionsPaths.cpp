#include "foundation/NSString+NSStringAdditions.h"
#include "platform/base/PathText.h"

namespace vornix {

std::optional<std::string> volumePath(std::string_view self, const Volumes& volumes) {
  return volumes.volumePathOf(self);
}

std::string stringByDeletingRealPathExtension(std::string_view self, const NSFileManager& files) {
  bool isFolder = false;
  const bool exists = files.fileExistsAtPath(self, &isFolder);
  return exists && isFolder ? std::string(self) : text::deletingPathExtension(self);
}

}  // namespace vornix
