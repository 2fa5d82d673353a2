#include "tests/fakes/FakeFileRemover.h"

#include <cerrno>

namespace vornix::fakes {

RemovefileResult FakeFileRemover::removefile(std::string_view path, std::uint32_t flags) {
  requests_.emplace_back(path, flags);
  if (answer_.value != 0) return answer_;
  const int error = remove(path, (flags & REMOVEFILE_RECURSIVE) != 0);
  return {.value = error == 0 ? 0 : -1, .errorNumber = error};
}

int FakeFileRemover::remove(std::string_view path, bool isRecursive) {
  std::string resolved;
  if (const int error = tree_.locate(path, false, resolved)) return error;
  if (resolved.empty()) return EBUSY;
  if (path.ends_with('/') && !tree_.isFolder(resolved)) {
    // Leads nowhere, in a circle, or to a file.
    if (const int error = tree_.locate(path, true, resolved)) return error;
    if (!tree_.isFolder(resolved)) return ENOTDIR;
  }
  if (tree_.isMountPoint(resolved)) return EBUSY;
  std::vector<std::string> names;
  if (!isRecursive && tree_.list(resolved, names) == 0 && !names.empty()) return ENOTEMPTY;
  return tree_.remove(resolved);
}

}  // namespace vornix::fakes
