#include "platform/linux/files/SourceRemoval.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/linux/files/ItemCopy.h"
#include "platform/linux/files/TreeCopy.h"

namespace vornix {
namespace {

constexpr std::int64_t kNanoseconds = 1'000'000'000;
constexpr std::int64_t kCoarsest = 2 * kNanoseconds;
// How often one folder in which something is left is looked through.
constexpr int kMostPasses = 100;

// 0 when the copy's time is at, or shortly before, the source's; then `difference` says by how
// much.
bool isShortlyBefore(const struct statx& copy, const struct statx& source,
                     std::int64_t& difference) {
  const std::int64_t seconds = source.stx_mtime.tv_sec - copy.stx_mtime.tv_sec;
  if (seconds < 0 || seconds > kCoarsest / kNanoseconds) return false;
  difference = seconds * kNanoseconds + source.stx_mtime.tv_nsec - copy.stx_mtime.tv_nsec;
  return difference >= 0 && difference < kCoarsest;
}

}  // namespace

std::int64_t exactnessOfTimes(const struct statx& source, const struct statx& copy) {
  std::int64_t difference = 0;
  if (!isShortlyBefore(copy, source, difference)) return kNoTimes;
  std::int64_t exactness = kExactTimes;
  while (exactness <= difference) exactness *= 10;
  return exactness;
}

SourceRemoval::SourceRemoval(FolderDescent source, FolderDescent copy, std::int64_t exactness)
    : source_(std::move(source)), copy_(std::move(copy)), exactness_(exactness), levels_(1) {}

int SourceRemoval::run(const ItemPlace& place) {
  int error = ENOTEMPTY;
  for (int passes = 0; error == ENOTEMPTY && passes < kMostPasses; ++passes) {
    error = empty();
    if (error == 0) error = removeTop(place);
  }
  return error == ENOTEMPTY ? EBUSY : error;
}

int SourceRemoval::removeTop(const ItemPlace& place) {
  struct statx own {};
  struct statx found {};
  if (statx(source_.folder(), "", AT_EMPTY_PATH, STATX_BASIC_STATS, &own) != 0) return errno;
  int error = statusOfItem(place.folder.get(), place.name.c_str(), found);
  if (error == 0 && !isSameItem(own, found)) return EBUSY;
  if (error == 0) error = errorOf(unlinkat(place.folder.get(), place.name.c_str(), AT_REMOVEDIR));
  return error == ENOENT ? 0 : error;
}

int SourceRemoval::empty() {
  int error = errorOf(static_cast<int>(lseek(source_.folder(), 0, SEEK_SET)));
  if (error == 0) error = readFolder();
  while (error == 0 && (levels_.size() > 1 || !levels_.back().folders.empty())) {
    NameStack& folders = levels_.back().folders;
    error = folders.empty() ? leave() : enter(folders.pop());
  }
  if (error != 0) return error == ENOENT ? EBUSY : error;
  return levels_.back().keepsSomething ? EBUSY : 0;
}

int SourceRemoval::readFolder() {
  return reader_.read(source_.folder(), [this](const char* name, unsigned char type) {
    if (type != DT_DIR) return removeOrKeep(name);
    levels_.back().folders.push(name);
    return 0;
  });
}

int SourceRemoval::removeOrKeep(const char* name) {
  struct statx source {};
  struct statx copy {};
  if (const int error = statusOfItem(source_.folder(), name, source))
    return error == ENOENT ? 0 : error;
  if (S_ISDIR(source.stx_mode)) {
    levels_.back().folders.push(name);
    return 0;
  }
  if (statusOfItem(copy_.folder(), name, copy) != 0 || !isCopied(source, copy)) return keep();
  const int error = errorOf(unlinkat(source_.folder(), name, 0));
  if (error == EISDIR) return keep();
  return error == ENOENT ? 0 : error;
}

bool SourceRemoval::isCopied(const struct statx& source, const struct statx& copy) const {
  if ((source.stx_mode & S_IFMT) != (copy.stx_mode & S_IFMT)) return false;
  // What else there is holds nothing; FIFOs' times change with what flows through them.
  if (!S_ISREG(source.stx_mode) && !S_ISLNK(source.stx_mode))
    return source.stx_rdev_major == copy.stx_rdev_major &&
           source.stx_rdev_minor == copy.stx_rdev_minor;
  if (source.stx_size != copy.stx_size) return false;
  std::int64_t difference = 0;
  return exactness_ == kNoTimes ||
         (isShortlyBefore(copy, source, difference) && difference < exactness_);
}

int SourceRemoval::enter(std::string name) {
  // Whatever keeps its copy from being looked into, it cannot be told then what was copied.
  if (copy_.descend(name) != 0) return keep();
  const int error = source_.descend(name);
  if (error == 0) {
    levels_.push_back({.name = std::move(name)});
    return readFolder();
  }
  levels_.back().attempts = 0;
  if (const int copyError = copy_.ascend()) return copyError;
  if (error == ENOENT) return 0;
  // Swapped for something else since it was read.
  return error == ENOTDIR || error == ELOOP ? keep() : error;
}

int SourceRemoval::leave() {
  const Level left = std::move(levels_.back());
  levels_.pop_back();
  if (const int error = source_.ascend()) return error;
  if (const int error = copy_.ascend()) return error;
  if (left.keepsSomething) return keep();
  const int error = errorOf(unlinkat(source_.folder(), left.name.c_str(), AT_REMOVEDIR));
  // Filled meanwhile, or by a file system that leaves entries out while others are removed.
  if (error == ENOTEMPTY && ++levels_.back().attempts < kMostPasses) {
    levels_.back().folders.push(left.name);
    return 0;
  }
  if (error == ENOTEMPTY || error == ENOTDIR) return keep();
  levels_.back().attempts = 0;
  return error == ENOENT ? 0 : error;
}

int SourceRemoval::keep() {
  levels_.back().keepsSomething = true;
  levels_.back().attempts = 0;
  return 0;
}

}  // namespace vornix
