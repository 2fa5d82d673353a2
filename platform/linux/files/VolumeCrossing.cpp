#include "platform/linux/files/VolumeCrossing.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "platform/base/Diagnostics.h"
#include "platform/linux/files/FolderDescent.h"
#include "platform/linux/files/FolderRemoval.h"
#include "platform/linux/files/ItemCopy.h"
#include "platform/linux/files/TreeCopy.h"

namespace vornix {
namespace {

constexpr const char* kCopyName = "item";
constexpr int kNameAttempts = 100;

int hiddenName(std::string& name) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz012345";
  std::array<unsigned char, 12> random{};
  const ssize_t length = getrandom(random.data(), random.size(), 0);
  if (length != static_cast<ssize_t>(random.size())) return length < 0 ? errno : EIO;
  name = ".vornix-moving-";
  for (const unsigned char each : random) name += kLetters[each % kLetters.size()];
  return 0;
}

// A hidden folder that only this account may look into; removed with all that is in it.
class Workshop {
 public:
  explicit Workshop(int place) : place_(place) {}
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;
  ~Workshop() { (void)clear(); }

  int make() {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
      if (const int error = hiddenName(name_)) return error;
      if (mkdirat(place_, name_.c_str(), 0700) == 0) {
        isMade_ = true;
        return enter();
      }
      if (errno != EEXIST) return errno;
    }
    return EEXIST;
  }

  int clear() {
    if (!std::exchange(isMade_, false)) return 0;
    return removeItemIn(place_, name_);
  }

  [[nodiscard]] int folder() const { return folder_.get(); }

 private:
  int enter() {
    if (const int error = openSubfolder(place_, name_.c_str(), folder_)) return error;
    // Nothing that is made here shall inherit access rights from the folder around.
    fremovexattr(folder_.get(), "system.posix_acl_default");
    fremovexattr(folder_.get(), "system.posix_acl_access");
    return errorOf(fchmod(folder_.get(), 0700));
  }

  const int place_;
  std::string name_;
  bool isMade_ = false;
  FileDescriptor folder_;
};

// Whether the folder lets this account remove the item.
int permissionToRemove(int folder, const struct statx& item) {
  if (faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return errno;
  struct stat around {};
  if (fstat(folder, &around) != 0) return errno;
  const uid_t self = geteuid();
  const bool isSticky = (around.st_mode & S_ISVTX) != 0;
  const bool isForeign = self != around.st_uid && self != item.stx_uid && self != 0;
  return isSticky && isForeign ? EPERM : 0;
}

// Whether the way up from the folder leads through the item.
bool liesWithin(int folder, const struct statx& item) {
  FileDescriptor at(openat(folder, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
  struct statx below {};
  while (at.isOpen()) {
    struct statx status {};
    if (statx(at.get(), "", AT_EMPTY_PATH, STATX_BASIC_STATS, &status) != 0) return false;
    if (isSameItem(status, item)) return true;
    if (isSameItem(status, below)) return false;
    below = status;
    at = FileDescriptor(openat(at.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
  }
  return false;
}

// Of what is no folder. Only files and links hold something; FIFOs' times change with what flows
// through them.
bool isAsBefore(const struct statx& before, const struct statx& now) {
  const bool holdsSomething = S_ISREG(before.stx_mode) || S_ISLNK(before.stx_mode);
  return holdsSomething ? isUnchanged(before, now) : isSameItem(before, now);
}

int requireSame(const ItemPlace& place, const struct statx& before) {
  struct statx now {};
  if (const int error = statusOfItem(place.folder.get(), place.name.c_str(), now)) return error;
  const bool isSame = S_ISDIR(before.stx_mode) ? isSameItem(before, now) : isAsBefore(before, now);
  return isSame ? 0 : EBUSY;
}

// What somebody else has removed meanwhile is no failure.
int removeUnchanged(const ItemPlace& place, const struct statx& before) {
  int error = requireSame(place, before);
  if (error == 0) error = errorOf(unlinkat(place.folder.get(), place.name.c_str(), 0));
  return error == ENOENT ? 0 : error;
}

// What a rename changed is on the disk once the folder is.
int syncFolder(const ItemPlace& place, int fallback) {
  const FileDescriptor folder(openat(place.folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return folder.isOpen() ? errorOf(fsync(folder.get())) : errorOf(syncfs(fallback));
}

// For file systems that cannot rename without replacing. Of what appears at the destination after
// the look, only an empty folder could be replaced, and a file where there are no further names.
int putByName(const ItemPlace& to, int workshop, bool isFolder) {
  const int place = to.folder.get();
  // The copy's first name goes with the workshop.
  const int error =
      isFolder ? EPERM : errorOf(linkat(workshop, kCopyName, place, to.name.c_str(), 0));
  if (error != EPERM && error != EOPNOTSUPP) return error;
  struct stat existing {};
  if (fstatat(place, to.name.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return errorOf(renameat(workshop, kCopyName, place, to.name.c_str()));
}

int putIntoPlace(const ItemPlace& to, const Workshop& workshop, bool isFolder) {
  // Everything copied, before any of it counts.
  if (syncfs(workshop.folder()) != 0) return errno;
  const int error = errorOf(
      renameat2(workshop.folder(), kCopyName, to.folder.get(), to.name.c_str(), RENAME_NOREPLACE));
  const int answer = error == EINVAL ? putByName(to, workshop.folder(), isFolder) : error;
  return answer != 0 ? answer : syncFolder(to, workshop.folder());
}

int copyWhole(const ItemPlace& from, TreeCopy& copy) {
  const int error = copy.run(from.folder.get(), from.name, kCopyName);
  if (error == 0 && copy.lostAttributes()) {
    reportDiagnostic("The volume that \"" + from.name +
                     "\" is moved to keeps no extended attributes; they are lost.");
  }
  return error;
}

}  // namespace

int moveAcrossVolumes(const ItemPlace& from, const ItemPlace& to) {
  struct statx item {};
  if (const int error = statusOfItem(from.folder.get(), from.name.c_str(), item)) return error;
  if (const int error = permissionToRemove(from.folder.get(), item)) return error;
  const bool isFolder = S_ISDIR(item.stx_mode);
  if (isFolder && liesWithin(to.folder.get(), item)) return EINVAL;
  Workshop workshop(to.folder.get());
  if (const int error = workshop.make()) return error;
  TreeCopy copy(workshop.folder());
  if (const int error = copyWhole(from, copy)) return error;
  if (const int error = requireSame(from, item)) return error;
  if (const int error = putIntoPlace(to, workshop, isFolder)) return error;
  (void)workshop.clear();
  return isFolder ? copy.removeSource(from) : removeUnchanged(from, item);
}

}  // namespace vornix
