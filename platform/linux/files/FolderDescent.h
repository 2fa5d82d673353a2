#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/linux/system/FileDescriptor.h"

namespace vornix {

// Opens an item of the folder with the flags, and nothing beyond a link or in another mounted
// volume. Answers 0 or the system's error number: ELOOP or ENOTDIR for a link, EBUSY for what is
// mounted there.
[[nodiscard]] int openWithin(int folder, const char* name, int flags, FileDescriptor& item);
// The same for a folder, to be read.
[[nodiscard]] int openSubfolder(int folder, const char* name, FileDescriptor& subfolder);

// A way down into folders and up again that never leaves the tree it began in, whatever is moved
// or swapped for a link meanwhile. Keeps few descriptors open, however deep it goes, and
// only the folder reached where there are no more.
class FolderDescent {
 public:
  explicit FolderDescent(FileDescriptor top);

  // The folder reached.
  [[nodiscard]] int folder() const { return levels_.back().folder.get(); }
  // 1 for the folder it began in.
  [[nodiscard]] std::size_t depth() const { return levels_.size(); }

  // All answer 0 or the system's error number, and have then not moved. EBUSY where the way up no
  // longer leads to where it came from; there is none from the folder it began in.
  [[nodiscard]] int descend(const std::string& name);
  [[nodiscard]] int ascend();
  // Afterwards `ascend` cannot fail, even when the folder reached may no longer be searched.
  [[nodiscard]] int prepareToAscend();

 private:
  struct Level {
    FileDescriptor folder;
    // Of a folder that is not open now.
    dev_t device = 0;
    ino_t inode = 0;
  };

  // All folders above the one reached but so many of the nearest.
  [[nodiscard]] int closeAbove(std::size_t kept);
  [[nodiscard]] static int close(Level& level);

  std::vector<Level> levels_;
};

}  // namespace vornix
