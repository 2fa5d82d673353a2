#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/preferences/FileBytes.h"

namespace vornix {

// The file that the path leads to through symbolic links, which need not exist. None, with `errno`
// set, when they lead in a circle.
[[nodiscard]] std::optional<std::string> resolveFileLinks(const std::string& path);

// "/a/b.plist" and "lock" give "/a/.b.plist.lock".
[[nodiscard]] std::string hiddenSibling(const std::string& path, std::string_view suffix);

// Writes a new file beside the path, owner-only. The caller must be alone at it. 0, or the system's
// error; nothing is then left behind.
[[nodiscard]] int writeNewFile(const std::string& path, std::string_view bytes, FileStamp& stamp);

// Gives what stands at the path another, new name that no other file has, without ever leaving the
// data nameless; a regular file keeps the old name as well, where the file system can. The new
// name, or none with `errno` set.
[[nodiscard]] std::optional<std::string> setAside(const std::string& path);

// Makes a file and the entry in its folder durable. 0, or the system's error.
[[nodiscard]] int flushFileAndFolder(const std::string& path);

}  // namespace vornix
