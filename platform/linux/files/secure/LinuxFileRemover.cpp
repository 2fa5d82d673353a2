#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <utility>

#include "platform/base/PathText.h"
#include "platform/files/FileRemover.h"
#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/files/secure/RandomBytes.h"
#include "platform/linux/files/secure/SecureRemoval.h"
#include "platform/linux/system/FileDescriptor.h"
#include "platform/linux/system/ResolvedPath.h"

namespace vornix {
namespace {

bool asksForFolder(const std::string& path) {
  const std::string name = text::lastPathComponent(path);
  return path.ends_with('/') || name == "." || name == "..";
}

bool standsAt(int folder, const ItemPlace& place) {
  struct stat wanted {};
  struct stat found {};
  return fstat(folder, &wanted) == 0 &&
         fstatat(place.folder.get(), place.name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
         wanted.st_dev == found.st_dev && wanted.st_ino == found.st_ino;
}

// The path may lead to the folder by a link, or in ways that do not name it.
int findFolder(const std::string& path, ItemPlace& place) {
  const FileDescriptor folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.isOpen()) return errno;
  if (findPlace(path, place) == 0 && standsAt(folder.get(), place)) return 0;
  const auto resolved = resolvedPath(path);
  if (!resolved) return errno;
  if (const int error = findPlace(*resolved, place)) return error;
  // Else the path leads elsewhere since.
  return standsAt(folder.get(), place) ? 0 : EBUSY;
}

// Only the path's own words decide whether a link at its end is followed: what stands there now may
// be swapped for one before the next look.
int findItem(const std::string& path, ItemPlace& place) {
  return asksForFolder(path) ? findFolder(path, place) : findPlace(path, place);
}

int removeWithFlags(std::string_view path, std::uint32_t flags) {
  if (path.find('\0') != std::string_view::npos) return ENOENT;
  ItemPlace place;
  if (const int error = findItem(std::string(path), place)) return error;
  auto random = RandomBytes::seeded();
  if (!random) return errno;
  return SecureRemoval(*random, flags).run(std::move(place));
}

class LinuxFileRemover final : public FileRemover {
 public:
  [[nodiscard]] RemovefileResult removefile(std::string_view path, std::uint32_t flags) override {
    const int error = removeWithFlags(path, flags);
    return {.value = error == 0 ? 0 : -1, .errorNumber = error};
  }
};

}  // namespace

FileRemover& sharedFileRemover() {
  static auto& remover = *new LinuxFileRemover;
  return remover;
}

}  // namespace vornix
