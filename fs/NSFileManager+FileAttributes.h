#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/base/Date.h"
#include "platform/files/FileAttributes.h"
#include "platform/files/MetadataIndex.h"
#include "platform/files/NSFileManager.h"

// Times and the hidden flag of one item. Links are followed. Times are whole seconds since
// 1970-01-01 00:00 UTC; 0 without a path and for what does not exist or cannot be reached. Any
// thread.
namespace vornix {

// 0 also where the file system keeps no such time.
[[nodiscard]] std::int64_t statCreationTimeAtPath(
    const NSFileManager& self, std::optional<std::string_view> path,
    const FileAttributes& attributes = sharedFileAttributes());

[[nodiscard]] std::int64_t statModificationTimeAtPath(
    const NSFileManager& self, std::optional<std::string_view> path,
    const FileAttributes& attributes = sharedFileAttributes());

// When the item was last used, as the index of documents knows it, else when it last was changed,
// as that knows it; for all that the index does not know, the time of the last access.
[[nodiscard]] std::int64_t statAccessTimeAtPath(
    const NSFileManager& self, std::optional<std::string_view> path,
    const FileAttributes& attributes = sharedFileAttributes(),
    const MetadataIndex& index = sharedMetadataIndex());

// The same as a date; that of 1970 where there is none.
[[nodiscard]] Date lastAccessDateAtPath(const NSFileManager& self,
                                        std::optional<std::string_view> path,
                                        const FileAttributes& attributes = sharedFileAttributes(),
                                        const MetadataIndex& index = sharedMetadataIndex());

// Whether the hidden flag is set, which not every system has; a dot at the start of the name does
// not count. What cannot be looked at is told to the log.
[[nodiscard]] bool isFileHidden(const NSFileManager& self, std::string_view path,
                                const FileAttributes& attributes = sharedFileAttributes());

}  // namespace vornix
