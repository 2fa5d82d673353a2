#include "platform/linux/files/secure/RemovalQueue.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/linux/files/ItemPlace.h"

namespace vornix {
namespace {

// Enough to share one flush of the drive; few enough to leave descriptors for others.
constexpr std::size_t kMostItems = 64;
constexpr std::int64_t kMostBytes = std::int64_t{32} << 20U;
constexpr std::size_t kNameLength = 14;

int removeNamed(int folder, const std::string& name, RemovalQueue::Kind kind) {
  const int flags = kind == RemovalQueue::Kind::folder ? AT_REMOVEDIR : 0;
  return errorOf(unlinkat(folder, name.c_str(), flags));
}

int renameIn(int folder, const std::string& from, const std::string& to) {
  if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  // Not every file system can tell; nobody else hits on the same name.
  if (errno != EINVAL && errno != ENOSYS) return errno;
  return renameat(folder, from.c_str(), folder, to.c_str()) == 0 ? 0 : errno;
}

// Unless somebody has put something else there.
void giveBackName(int folder, const std::string& random, const std::string& name) {
  struct stat status {};
  if (statusAt(folder, name.c_str(), status) == ENOENT) (void)renameIn(folder, random, name);
}

bool losesContents(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_size > 0;
}

}  // namespace

int statusAt(int folder, const char* name, struct stat& status) {
  return errorOf(fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW));
}

int RemovalQueue::add(Folder folder, std::string name, Kind kind) {
  return push({std::move(folder), std::move(name), kind}, 0);
}

int RemovalQueue::addName(Folder folder, std::string name, const struct stat& status) {
  return push({.folder = std::move(folder),
               .name = std::move(name),
               .device = status.st_dev,
               .inode = status.st_ino},
              0);
}

bool RemovalQueue::holdsNameOf(const struct stat& status) const {
  return std::ranges::any_of(items_, [&](const Item& item) { return item.isNameOf(status); });
}

int RemovalQueue::addOverwritten(Folder folder, std::string name, FileDescriptor file,
                                 const struct stat& status) {
  if (const int error = overwriting_.overwrite(file.get(), status)) return error;
  return push({.folder = std::move(folder),
               .name = std::move(name),
               .file = std::move(file),
               .device = status.st_dev,
               .inode = status.st_ino},
              status.st_size);
}

int RemovalQueue::push(Item item, std::int64_t size) {
  items_.push_back(std::move(item));
  bytes_ += size;
  return items_.size() < kMostItems && bytes_ < kMostBytes ? 0 : finish();
}

int RemovalQueue::finish() {
  std::size_t last = 0;
  const int writingError = finishOverwriting(last);
  int error = 0;
  for (std::size_t number = 0; number < last && error == 0; ++number) {
    error = remove(items_[number]);
    if (!expectsItems_ && meansAbsence(error)) error = 0;
  }
  items_.clear();
  bytes_ = 0;
  return error != 0 ? error : writingError;
}

// Tells how many items, from the first on, may go.
int RemovalQueue::finishOverwriting(std::size_t& last) {
  std::vector<int> files;
  for (const Item& item : items_) {
    if (item.file.isOpen()) files.push_back(item.file.get());
  }
  std::size_t done = 0;
  const int error = awaitOnDisk(files, done);
  last = 0;
  while (last < items_.size() && (!items_[last].file.isOpen() || done-- > 0)) ++last;
  return error;
}

int RemovalQueue::remove(const Item& item) {
  const int folder = item.folder->get();
  if (!renames_) return removeNamed(folder, item.name, item.kind);
  std::string name = item.name;
  if (const int error = rename(folder, name)) return error;
  int error = checkRenamed(item, name);
  if (error == 0) error = removeNamed(folder, name, item.kind);
  // What stays, stays under its own name.
  if (error != 0) giveBackName(folder, name, item.name);
  return error;
}

// Nobody else knows the item by the name that it has now, so what is found there is what goes. A
// folder that is not empty does not.
int RemovalQueue::checkRenamed(const Item& item, const std::string& name) {
  if (item.kind == Kind::folder) return 0;
  struct stat status {};
  if (const int error = statusAt(item.folder->get(), name.c_str(), status)) return error;
  const bool isExpected = item.file.isOpen() ? item.isNameOf(status) : !losesContents(status);
  return isExpected ? 0 : EBUSY;
}

int RemovalQueue::rename(int folder, std::string& name) {
  int error = EEXIST;
  while (error == EEXIST) {
    const std::string random = random_.name(kNameLength);
    error = renameIn(folder, name, random);
    if (error == 0) name = random;
  }
  return error;
}

}  // namespace vornix
