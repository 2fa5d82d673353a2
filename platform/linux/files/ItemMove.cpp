#include "platform/linux/files/ItemMove.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/base/PathText.h"
#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/files/VolumeCrossing.h"

namespace vornix {
namespace {

bool isSameItem(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool liesInSameFolder(const ItemPlace& left, const ItemPlace& right) {
  struct stat one {};
  struct stat other {};
  return fstat(left.folder.get(), &one) == 0 && fstat(right.folder.get(), &other) == 0 &&
         isSameItem(one, other);
}

// Two names of one folder for an item that has only one: the folder ignores case.
bool changesOnlyCase(const ItemPlace& from, const ItemPlace& to, const struct stat& item,
                     const struct stat& existing) {
  const bool hasOneName = S_ISDIR(item.st_mode) || item.st_nlink == 1;
  return from.name != to.name && hasOneName && isSameItem(item, existing) &&
         liesInSameFolder(from, to);
}

int renameTo(const ItemPlace& from, const ItemPlace& to, unsigned flags) {
  return errorOf(
      renameat2(from.folder.get(), from.name.c_str(), to.folder.get(), to.name.c_str(), flags));
}

// For file systems that cannot rename without replacing. Of what appears at the destination
// meanwhile only an empty folder could be replaced.
int renameByLink(const ItemPlace& from, const ItemPlace& to, bool isFolder) {
  if (isFolder) return renameTo(from, to, 0);
  const int error =
      errorOf(linkat(from.folder.get(), from.name.c_str(), to.folder.get(), to.name.c_str(), 0));
  return error != 0 ? error : errorOf(unlinkat(from.folder.get(), from.name.c_str(), 0));
}

int moveToFreePlace(const ItemPlace& from, const ItemPlace& to, bool isFolder) {
  const int error = renameTo(from, to, RENAME_NOREPLACE);
  if (error == EXDEV) return moveAcrossVolumes(from, to);
  return error == EINVAL ? renameByLink(from, to, isFolder) : error;
}

}  // namespace

int moveItem(const std::string& source, const std::string& destination) {
  struct stat existing {};
  const std::string end(text::withoutTrailingSlashes(destination));
  const bool exists = lstat(end.c_str(), &existing) == 0;
  ItemPlace from;
  ItemPlace to;
  struct stat item {};
  int error = findPlace(source, from);
  if (error == 0) error = findPlace(destination, to);
  if (error == 0)
    error = errorOf(fstatat(from.folder.get(), from.name.c_str(), &item, AT_SYMLINK_NOFOLLOW));
  if (exists) {
    const bool mayReplace = error == 0 && changesOnlyCase(from, to, item, existing);
    return mayReplace ? renameTo(from, to, 0) : EEXIST;
  }
  if (error != 0) return error;
  const bool isFolder = S_ISDIR(item.st_mode);
  if (!isFolder && source.ends_with('/') && !S_ISLNK(item.st_mode)) return ENOTDIR;
  if (!isFolder && destination.ends_with('/')) return ENOTDIR;
  return moveToFreePlace(from, to, isFolder);
}

}  // namespace vornix
