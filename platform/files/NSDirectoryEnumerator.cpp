#include "platform/files/NSDirectoryEnumerator.h"

#include <utility>

namespace vornix {

NSDirectoryEnumerator::NSDirectoryEnumerator(std::unique_ptr<FileHierarchy> hierarchy,
                                             std::string folder, std::uint32_t options)
    : hierarchy_(std::move(hierarchy)), folder_(std::move(folder)), options_(options) {
  // The folder itself is not told.
  const bool isFolder = hierarchy_ && hierarchy_->read()->kind == HierarchyKind::folder;
  if (!isFolder) hierarchy_.reset();
}

std::optional<std::string> NSDirectoryEnumerator::nextObject() {
  const auto relative = advance();
  return relative ? std::optional<std::string>(*relative) : std::nullopt;
}

std::optional<NSURL> NSDirectoryEnumerator::nextURL() {
  const auto relative = advance();
  if (!relative) return std::nullopt;
  return NSURL::fileURLWithPath(folder_ + std::string(*relative), isAtFolder_);
}

void NSDirectoryEnumerator::skipDescendants() {
  if (isAtFolder_) hierarchy_->skip();
}

std::optional<std::string_view> NSDirectoryEnumerator::advance() {
  isAtFolder_ = false;
  while (const HierarchyEntry* entry = hierarchy_ ? hierarchy_->read() : nullptr) {
    const bool isSeenBefore = entry->kind == HierarchyKind::folderEnd ||
                              entry->kind == HierarchyKind::unreadableFolder ||
                              entry->kind == HierarchyKind::error;
    if (isSeenBefore) continue;
    const bool isFolder = entry->kind == HierarchyKind::folder;
    if (leavesOut(entry->name, options_)) {
      if (isFolder) hierarchy_->skip();
      continue;
    }
    isAtFolder_ = isFolder;
    level_ = entry->level;
    return entry->path.substr(folder_.size());
  }
  hierarchy_.reset();
  return std::nullopt;
}

}  // namespace vornix
