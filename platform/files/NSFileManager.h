#pragma once

#include <string_view>

namespace vornix {

// What stands in the file system. Paths are bytes, relative ones start at the current folder; an
// empty path and one with a zero byte name nothing. Any thread.
class NSFileManager {
 public:
  virtual ~NSFileManager() = default;

  // The process's own, never destroyed.
  [[nodiscard]] static NSFileManager& defaultManager();

  // Follows links: one that leads nowhere does not exist, and neither does what may not be reached.
  // `isDirectory`, when given, tells whether it is a folder; false where nothing exists.
  [[nodiscard]] virtual bool fileExistsAtPath(std::string_view path,
                                              bool* isDirectory = nullptr) const = 0;
};

}  // namespace vornix
