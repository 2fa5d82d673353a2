#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileAttributes.h"
#include "platform/files/NSFileManager.h"
#include "platform/files/NSURL.h"
#include "platform/text/NSRegularExpression.h"

namespace vornix {

// Listings of folders, and what follows from them. What cannot be read counts as holding nothing.
// Any thread.

// The paths of what the folder holds, hidden items included, in the listing's order.
[[nodiscard]] std::vector<std::string> directoryContentsWithFullPathesAtPath(
    const NSFileManager& self, std::string_view path);

// What is in the folders that lie `atLevel` steps below the URL: 1 are its direct children, 0 finds
// nothing. Hidden folders are left out on the way, but hidden items of the folders found are told.
// Asks the process's own file manager, whatever the receiver.
[[nodiscard]] std::vector<NSURL> contentsOfDirectoryAtURL(const NSFileManager& self,
                                                          const NSURL& url, std::uint64_t atLevel);

// The names of what the folder holds and, with `secondLevel`, "child/grandchild" for what its
// folders hold. Asks the process's own file manager, whatever the receiver.
[[nodiscard]] std::set<std::string> getContentOfPath(const NSFileManager& self,
                                                     std::string_view path, bool secondLevel);

// Whether the expression matches somewhere in the full path of something below the folder. Looks as
// deep as one step below `level`. False without a path or an expression.
[[nodiscard]] bool fileExistsAtPath(const NSFileManager& self, std::optional<std::string_view> path,
                                    const NSRegularExpression* withRegularExpression,
                                    std::uint64_t level);

// The path when nothing stands there, else the first free one of "name 1.ext", "name 2.ext", …
// Asks the process's own file manager, whatever the receiver.
[[nodiscard]] std::string uniquePathForPath(const NSFileManager& self, std::string_view path);

// Whether the folder holds anything, an empty folder included; with `ignoreSymLinks` anything but
// links. What cannot be looked at does not count.
[[nodiscard]] bool containsAnyFileAtPath(const NSFileManager& self, std::string_view path,
                                         bool ignoreSymLinks);

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
