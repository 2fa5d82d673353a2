#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <utility>

#include "platform/base/PathText.h"
#include "platform/files/FileRemover.h"
#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/files/secure/RandomBytes.h"
#include "platform/linux/files/secure/SecureRemoval.h"
#include "platform/linux/system/ResolvedPath.h"

namespace vornix {
namespace {

bool isLinkOrDots(const std::string& path) {
  const std::string item(text::withoutTrailingSlashes(path));
  const std::string name = text::lastPathComponent(item);
  struct stat status {};
  return name == "." || name == ".." ||
         (lstat(item.c_str(), &status) == 0 && S_ISLNK(status.st_mode));
}

// A folder's path may lead to it in ways that do not name it.
int findItem(const std::string& path, ItemPlace& place) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return errno;
  if (!S_ISDIR(status.st_mode) || !isLinkOrDots(path)) return findPlace(path, place);
  const auto resolved = resolvedPath(path);
  return resolved ? findPlace(*resolved, place) : errno;
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
