#include "tests/fakes/FakeFileHierarchy.h"

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace vornix::fakes {
namespace {

std::string nameOfRoot(const std::string& path) {
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

}  // namespace

const HierarchyEntry* FakeFileHierarchy::read() {
  if (!std::exchange(isStarted_, true)) return readRoot();
  if (entry_.kind == HierarchyKind::folder) return readInside();
  return readItem();
}

void FakeFileHierarchy::close() {
  isStarted_ = true;
  entry_.kind = HierarchyKind::folderEnd;
  folders_.clear();
  if (!tree_.closingFault.empty()) throw std::runtime_error(tree_.closingFault);
}

const HierarchyEntry* FakeFileHierarchy::readRoot() {
  Folder root{.path = root_, .name = nameOfRoot(root_)};
  const int error = tree_.locate(root_, root_.ends_with('/'), root.resolved);
  if (error != 0) return tell(root, HierarchyKind::noStatus, 0, error);
  rootDevice_ = tree_.deviceOf(root.resolved);
  const bool asks = !std::exchange(options_.noStatus, false);
  const HierarchyKind kind = kindOf(root.resolved);
  options_.noStatus = !asks;
  return tell(root, kind, 0);
}

// After a folder, with what it holds or its end.
const HierarchyEntry* FakeFileHierarchy::readInside() {
  const bool isForeign = options_.noCrossing && tree_.deviceOf(item_.resolved) != rootDevice_;
  const Folder folder = item_;
  if (std::exchange(isSkipped_, false) || isForeign)
    return tell(folder, HierarchyKind::folderEnd, folders_.size());
  folders_.push_back(folder);
  const int error = tree_.list(folder.resolved, folders_.back().names);
  if (error == 0) return readItem();
  folders_.pop_back();
  return tell(folder, HierarchyKind::unreadableFolder, folders_.size(), error);
}

const HierarchyEntry* FakeFileHierarchy::readItem() {
  if (folders_.empty()) return nullptr;
  Folder& folder = folders_.back();
  if (folder.next == folder.names.size()) {
    const Folder left = std::move(folder);
    folders_.pop_back();
    return tell(left, HierarchyKind::folderEnd, folders_.size());
  }
  const std::string& name = folder.names[folder.next++];
  const std::string_view slash = folder.path.ends_with('/') ? "" : "/";
  const Folder item{.resolved = folder.resolved + "/" + name,
                    .path = folder.path + std::string(slash) + name,
                    .name = name};
  const std::size_t level = folders_.size();
  if (item.resolved != tree_.walkBreaker) return tell(item, kindOf(item.resolved), level);
  folders_.clear();
  return tell(item, HierarchyKind::error, level, ENOMEM);
}

const HierarchyEntry* FakeFileHierarchy::tell(const Folder& item, HierarchyKind kind,
                                              std::size_t level, int error) {
  item_ = item;
  isSkipped_ = false;
  entry_ = {.kind = kind, .error = error, .level = level, .path = item_.path, .name = item_.name};
  return &entry_;
}

HierarchyKind FakeFileHierarchy::kindOf(const std::string& resolved) const {
  if (tree_.isFolder(resolved)) return HierarchyKind::folder;
  if (options_.noStatus) return HierarchyKind::notAsked;
  switch (tree_.itemAt(resolved).type) {
    case FileType::regular:
      return HierarchyKind::file;
    case FileType::symbolicLink:
      return HierarchyKind::symbolicLink;
    default:
      return HierarchyKind::other;
  }
}

}  // namespace vornix::fakes
