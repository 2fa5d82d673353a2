#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/files/NSFileManager.h"
#include "platform/files/Volumes.h"

namespace vornix {

// The path of the volume that holds the item at this path, which is not followed when it is a link.
// None for what does not exist or cannot be reached. Any thread.
[[nodiscard]] std::optional<std::string> volumePath(std::string_view self,
                                                    const Volumes& volumes = sharedVolumes());

// The path without its extension, where it does not name an existing folder: bundles keep theirs.
// Such a folder's path is answered as it is. Any thread.
[[nodiscard]] std::string stringByDeletingRealPathExtension(
    std::string_view self, const NSFileManager& files = NSFileManager::defaultManager());

}  // namespace vornix
