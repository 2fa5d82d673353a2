#pragma once

#include <dirent.h>

#include <memory>
#include <string>

namespace vornix {

struct FolderCloser {
  void operator()(DIR* folder) const { closedir(folder); }
};

// An open folder; null when it cannot be read.
using FolderHandle = std::unique_ptr<DIR, FolderCloser>;

[[nodiscard]] inline FolderHandle openFolder(const std::string& path) {
  return FolderHandle(opendir(path.c_str()));
}

}  // namespace vornix
