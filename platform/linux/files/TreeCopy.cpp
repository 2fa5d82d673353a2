#include "platform/linux/files/TreeCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/linux/files/ItemCopy.h"
#include "platform/linux/files/ItemPlace.h"

namespace vornix {
namespace {

constexpr const char* kLinksName = "links";

bool isFolder(const struct statx& status) {
  return S_ISDIR(status.stx_mode);
}

int refusalToBeMoved(const struct statx& status) {
  constexpr std::uint64_t kUnchangeable = STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
  return (status.stx_attributes & kUnchangeable) != 0 ? EPERM : 0;
}

}  // namespace

int statusOfItem(int folder, const char* name, struct statx& status) {
  return errorOf(
      statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS, &status));
}

int TreeCopy::run(int folder, const std::string& name, const std::string& copyName) {
  struct statx status {};
  if (const int error = statusOfItem(folder, name.c_str(), status)) return error;
  if (!isFolder(status)) return copyItem(folder, name.c_str(), status, workshop_, copyName.c_str());
  FileDescriptor top;
  if (const int error = openSubfolder(folder, name.c_str(), top)) return error;
  return copyTree(std::move(top), copyName);
}

int TreeCopy::copyTree(FileDescriptor top, const std::string& copyName) {
  if (mkdirat(workshop_, copyName.c_str(), 0700) != 0) return errno;
  FileDescriptor copyTop;
  if (const int error = openSubfolder(workshop_, copyName.c_str(), copyTop)) return error;
  source_.emplace(std::move(top));
  copy_.emplace(std::move(copyTop));
  int error = openLevel();
  while (error == 0 && !levels_.empty()) {
    NameStack& folders = levels_.back().folders;
    error = folders.empty() ? leave() : enter(folders.pop());
  }
  return error;
}

int TreeCopy::openLevel() {
  Level& level = levels_.emplace_back();
  const int error =
      errorOf(statx(source_->folder(), "", AT_EMPTY_PATH, STATX_BASIC_STATS, &level.status));
  if (error != 0) return error;
  if (const int refused = refusalToBeMoved(level.status)) return refused;
  struct statx workshop {};
  if (statx(workshop_, "", AT_EMPTY_PATH, STATX_BASIC_STATS, &workshop) != 0) return errno;
  // Where a part of the source stands elsewhere, too, the copy can have come to lie in it.
  return isSameItem(level.status, workshop) ? EINVAL : readFolder();
}

int TreeCopy::readFolder() {
  bool isChecked = false;
  return reader_.read(source_->folder(), [&](const char* name, unsigned char type) {
    // Only the items in a folder need its permission to be removed.
    if (!std::exchange(isChecked, true) &&
        faccessat(source_->folder(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
      return errno;
    }
    if (type != DT_DIR) return copyOrKeep(name);
    levels_.back().folders.push(name);
    return 0;
  });
}

int TreeCopy::enter(const std::string& name) {
  const int error = source_->descend(name);
  if (error == ENOENT) return 0;
  // Swapped for something else since it was read.
  if (error == ENOTDIR || error == ELOOP) return copyOrKeep(name.c_str());
  if (error != 0) return error;
  if (mkdirat(copy_->folder(), name.c_str(), 0700) != 0) return errno;
  if (const int copyError = copy_->descend(name)) return copyError;
  return openLevel();
}

int TreeCopy::leave() {
  if (levels_.size() > 1) {
    // With its own permissions the copy may be closed to this account.
    if (const int error = copy_->prepareToAscend()) return error;
  }
  const int error =
      copyAttributes(source_->folder(), copy_->folder(), levels_.back().status, lostAttributes_);
  levels_.pop_back();
  if (error != 0 || levels_.empty()) return error;
  if (const int sourceError = source_->ascend()) return sourceError;
  return copy_->ascend();
}

int TreeCopy::copyOrKeep(const char* name) {
  struct statx status {};
  const int error = statusOfItem(source_->folder(), name, status);
  if (error != 0) return error == ENOENT ? 0 : error;
  if (isFolder(status)) {
    levels_.back().folders.push(name);
    return 0;
  }
  return copyItem(source_->folder(), name, status, copy_->folder(), name);
}

int TreeCopy::copyItem(int folder, const char* name, const struct statx& status, int copyFolder,
                       const char* copyName) {
  if (const int refused = refusalToBeMoved(status)) return refused;
  return status.stx_nlink > 1 ? copyAgain(folder, name, status, copyFolder, copyName)
                              : copyContents(folder, name, status, copyFolder, copyName);
}

int TreeCopy::copyContents(int folder, const char* name, const struct statx& status, int copyFolder,
                           const char* copyName) {
  const bool isFile = S_ISREG(status.stx_mode);
  if (!isFile && !S_ISLNK(status.stx_mode)) return copySpecial(status, copyFolder, copyName);
  const int error = isFile ? copyFile(folder, name, status, copyFolder, copyName, lostAttributes_)
                           : copyLink(folder, name, status, copyFolder, copyName);
  return error != 0 ? error : noteTime(status, copyFolder, copyName);
}

int TreeCopy::noteTime(const struct statx& status, int copyFolder, const char* copyName) {
  struct statx copy {};
  if (const int error = statusOfItem(copyFolder, copyName, copy)) return error;
  const std::int64_t exactness = exactnessOfTimes(status, copy);
  const bool isKnown = exactness_ != kNoTimes && exactness != kNoTimes;
  exactness_ = isKnown ? std::max(exactness_, exactness) : kNoTimes;
  return 0;
}

int TreeCopy::removeSource(const ItemPlace& place) {
  SourceRemoval removal(std::move(*source_), std::move(*copy_), exactness_);
  return removal.run(place);
}

int TreeCopy::copyAgain(int folder, const char* name, const struct statx& status, int copyFolder,
                        const char* copyName) {
  const FileIdentity file{status.stx_dev_major, status.stx_dev_minor, status.stx_ino};
  const auto known = known_.find(file);
  if (known != known_.end()) {
    const int error = errorOf(linkat(links_.get(), known->second.c_str(), copyFolder, copyName, 0));
    if (error != EMLINK) return error;
  }
  const int error = copyContents(folder, name, status, copyFolder, copyName);
  return error != 0 || known != known_.end() ? error : remember(file, copyFolder, copyName);
}

int TreeCopy::remember(const FileIdentity& file, int copyFolder, const char* copyName) {
  if (!links_.isOpen()) {
    if (mkdirat(workshop_, kLinksName, 0700) != 0) return errno;
    if (const int error = openSubfolder(workshop_, kLinksName, links_)) return error;
  }
  std::string name = std::to_string(known_.size());
  const int error = errorOf(linkat(copyFolder, copyName, links_.get(), name.c_str(), 0));
  // A file system without further names: then there are none to keep.
  if (error == EPERM || error == EOPNOTSUPP || error == EMLINK) return 0;
  if (error == 0) known_.emplace(file, std::move(name));
  return error;
}

}  // namespace vornix
