#pragma once

#include <sys/stat.h>

namespace vornix {

// Copies of single items, made with exclusive names in folders that nobody else changes. `status`
// is what was seen of the source before. Sockets, FIFOs and devices are made anew and never opened.
// All answer 0 or the system's error number; EBUSY when the source is no longer what it was, or
// changes while it is copied. `lostAttributes` becomes true when the copy's file system cannot keep
// extended attributes.
[[nodiscard]] int copyFile(int folder, const char* name, const struct statx& status, int copyFolder,
                           const char* copyName, bool& lostAttributes);
[[nodiscard]] int copyLink(int folder, const char* name, const struct statx& status, int copyFolder,
                           const char* copyName);
[[nodiscard]] int copySpecial(const struct statx& status, int copyFolder, const char* copyName);

[[nodiscard]] bool isSameItem(const struct statx& left, const struct statx& right);
// Whether it is the same item and nothing about it was changed in between.
[[nodiscard]] bool isUnchanged(const struct statx& before, const struct statx& after);

// Permissions, extended attributes, times, and the owner where that is allowed; without it nothing
// keeps the right to run as its owner.
[[nodiscard]] int copyAttributes(int source, int copy, const struct statx& status,
                                 bool& lostAttributes);

}  // namespace vornix
