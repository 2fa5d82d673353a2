#pragma once

#include <string_view>

#include "platform/files/FileAttributes.h"
#include "platform/files/NSFileManager.h"

namespace vornix {

// Small questions about one item. False for what does not exist or cannot be reached. Any thread.

// Of the item itself: false for a link to a folder.
[[nodiscard]] bool isFileDirectoryAtPath(const NSFileManager& self, std::string_view path);

// Whether the flag is set by which the system keeps others from changing the item, which not every
// system has. Follows links.
[[nodiscard]] bool isFileRestricted(const NSFileManager& self, std::string_view path,
                                    const FileAttributes& attributes = sharedFileAttributes());

// Whether the item itself bears the extended attribute that marks what the system protects, as
// `holdsRootlessAttribute` finds it.
[[nodiscard]] bool isFileProtectedByRootless(
    const NSFileManager& self, std::string_view path,
    const FileAttributes& attributes = sharedFileAttributes());

}  // namespace vornix
