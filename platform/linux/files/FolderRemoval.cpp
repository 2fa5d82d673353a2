#include "platform/linux/files/FolderRemoval.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/linux/files/FolderDescent.h"
#include "platform/linux/files/FolderReader.h"
#include "platform/linux/files/ItemPlace.h"

namespace vornix {
namespace {

// How often one folder in which something is left is looked through.
constexpr int kMostAttempts = 100;
// Folders' names kept for a level; more of them are found when the folder is read again.
constexpr std::size_t kMostNameBytes = 256U << 10U;
constexpr int kEnoughNames = -1;

int statusOf(int folder, const std::string& name, struct stat& status) {
  return errorOf(fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW));
}

bool isFolderIn(int folder, const char* name) {
  struct stat status {};
  return statusOf(folder, name, status) == 0 && S_ISDIR(status.st_mode);
}

// One that may not be read goes all the same when it is empty.
int removeUnreadable(int folder, const std::string& name, int error) {
  const int answer = errorOf(unlinkat(folder, name.c_str(), AT_REMOVEDIR));
  return answer == 0 || answer == ENOENT ? 0 : error;
}

class TreeRemoval {
 public:
  explicit TreeRemoval(FileDescriptor top) : descent_(std::move(top)), levels_(1) {}

  // Empties the folder.
  int run() {
    int error = readFolder();
    while (error == 0 && (levels_.size() > 1 || !isEmptied())) {
      if (!levels_.back().folders.empty()) {
        error = enter(levels_.back().folders.pop());
      } else {
        error = isEmptied() ? leave() : readAgain();
      }
    }
    return error;
  }

 private:
  struct Level {
    std::string name{};
    // Still to be removed.
    NameStack folders{};
    bool hasMore = false;
    // At the folder that is removed now.
    int attempts = 0;
  };

  [[nodiscard]] bool isEmptied() const {
    return levels_.back().folders.empty() && !levels_.back().hasMore;
  }

  int readFolder() {
    const int answer =
        reader_.read(descent_.folder(), [this](const char* name, unsigned char type) {
          if (type == DT_DIR) return keep(name);
          return removeOrKeep(name);
        });
    levels_.back().hasMore = answer == kEnoughNames;
    return answer == kEnoughNames ? 0 : answer;
  }

  int readAgain() {
    if (lseek(descent_.folder(), 0, SEEK_SET) != 0) return errno;
    return readFolder();
  }

  int keep(const char* name) {
    levels_.back().folders.push(name);
    return levels_.back().folders.size() < kMostNameBytes ? 0 : kEnoughNames;
  }

  int removeOrKeep(const char* name) {
    const int error = errorOf(unlinkat(descent_.folder(), name, 0));
    if (error == EISDIR || (error == EPERM && isFolderIn(descent_.folder(), name)))
      return keep(name);
    return error == ENOENT ? 0 : error;
  }

  int enter(std::string name) {
    const int error = descent_.descend(name);
    if (error == 0) {
      levels_.push_back({.name = std::move(name)});
      return readFolder();
    }
    levels_.back().attempts = 0;
    if (error == ENOENT) return 0;
    // Swapped for something else since it was read.
    if (error == ENOTDIR || error == ELOOP) return removeSwapped(name);
    return removeUnreadable(descent_.folder(), name, error);
  }

  int leave() {
    const std::string name = std::move(levels_.back().name);
    levels_.pop_back();
    if (const int error = descent_.ascend()) return error == ENOENT ? EBUSY : error;
    const int error = errorOf(unlinkat(descent_.folder(), name.c_str(), AT_REMOVEDIR));
    // Filled meanwhile, or by a file system that leaves entries out while others are removed.
    if (error == ENOTEMPTY && ++levels_.back().attempts < kMostAttempts) {
      levels_.back().folders.push(name);
      return 0;
    }
    levels_.back().attempts = 0;
    if (error == ENOTDIR) return removeSwapped(name);
    return error == ENOENT ? 0 : error;
  }

  int removeSwapped(const std::string& name) {
    const int answer = removeOrKeep(name.c_str());
    if (answer == kEnoughNames) levels_.back().hasMore = true;
    return answer == kEnoughNames ? 0 : answer;
  }

  FolderDescent descent_;
  FolderReader reader_;
  std::vector<Level> levels_;
};

int removeFolderIn(int folder, const std::string& name) {
  for (int attempts = 1;; ++attempts) {
    FileDescriptor opened;
    if (const int error = openSubfolder(folder, name.c_str(), opened))
      return error == ENOENT ? error : removeUnreadable(folder, name, error);
    if (const int error = TreeRemoval(std::move(opened)).run()) return error;
    const int error = errorOf(unlinkat(folder, name.c_str(), AT_REMOVEDIR));
    if (error != ENOTEMPTY || attempts == kMostAttempts) return error;
  }
}

}  // namespace

int removeItemIn(int folder, const std::string& name) {
  struct stat status {};
  if (const int error = statusOf(folder, name, status)) return error;
  if (S_ISDIR(status.st_mode)) return removeFolderIn(folder, name);
  return errorOf(unlinkat(folder, name.c_str(), 0));
}

int removeItem(std::string_view path) {
  ItemPlace place;
  if (const int error = findPlace(path, place)) return error;
  if (path.ends_with('/')) {
    // A file is no folder; a link goes by itself all the same.
    struct stat status {};
    if (const int error = statusOf(place.folder.get(), place.name, status)) return error;
    if (!S_ISDIR(status.st_mode) && !S_ISLNK(status.st_mode)) return ENOTDIR;
  }
  return removeItemIn(place.folder.get(), place.name);
}

}  // namespace vornix
