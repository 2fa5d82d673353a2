#pragma once

#include <cerrno>
#include <string>
#include <string_view>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix {

// Where an item stands, or will: asked for by name in an open folder, it stays the same place
// whatever becomes of the path that led there.
struct ItemPlace {
  FileDescriptor folder;
  std::string name;
};

// Links are followed on the way, never at the end; slashes at the end are left out. Answers 0 or
// the system's error number: EBUSY for the root, EINVAL for "." and "..", ENOENT for nothing.
[[nodiscard]] int findPlace(std::string_view path, ItemPlace& place);

// What a system call's answer says: 0 or the error number.
[[nodiscard]] inline int errorOf(int answer) {
  return answer >= 0 ? 0 : errno;
}

}  // namespace vornix
