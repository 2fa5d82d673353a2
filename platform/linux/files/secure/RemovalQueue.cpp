#include "platform/linux/files/secure/RemovalQueue.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace vornix {
namespace {

// Enough to share one flush of the drive; few enough to leave descriptors for others.
constexpr std::size_t kMostItems = 64;
constexpr std::int64_t kMostBytes = std::int64_t{32} << 20U;
constexpr std::size_t kNameLength = 14;

int renameIn(int folder, const std::string& from, const std::string& to) {
  if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  // Not every file system can tell; nobody else hits on the same name.
  if (errno != EINVAL && errno != ENOSYS) return errno;
  return renameat(folder, from.c_str(), folder, to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

int RemovalQueue::add(Folder folder, std::string name, Kind kind) {
  return push({std::move(folder), std::move(name), kind}, 0);
}

int RemovalQueue::addOverwritten(Folder folder, std::string name, FileDescriptor file,
                                 const struct stat& status) {
  if (const int error = overwriting_.overwrite(file.get(), status)) return error;
  return push({std::move(folder), std::move(name), Kind::other, std::move(file)}, status.st_size);
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
  std::string name = item.name;
  if (renames_) {
    if (const int error = rename(folder, name)) return error;
  }
  const int flags = item.kind == Kind::folder ? AT_REMOVEDIR : 0;
  if (unlinkat(folder, name.c_str(), flags) == 0) return 0;
  const int error = errno;
  // What stays, stays under its own name.
  if (renames_) (void)renameIn(folder, name, item.name);
  return error;
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
