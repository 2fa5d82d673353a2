#include "platform/linux/files/hierarchy/LinuxFileHierarchy.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "platform/linux/files/hierarchy/FolderChain.h"
#include "platform/linux/files/hierarchy/FolderOpener.h"
#include "platform/linux/files/hierarchy/RecordStack.h"

namespace vornix {
namespace {

// What follows the last slash, as fts has it.
std::size_t nameOffsetOf(std::string_view path) {
  const auto slash = path.rfind('/');
  const bool isAll = slash == std::string_view::npos || (slash == 0 && path.size() == 1);
  return isAll ? 0 : slash + 1;
}

bool isDots(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

class LinuxFileHierarchy final : public FileHierarchy {
 public:
  LinuxFileHierarchy(std::string_view path, HierarchyOptions options)
      : path_(path), opener_(options) {
    entry_.path = path_;
    entry_.name = entry_.path.substr(nameOffsetOf(path_));
  }

  [[nodiscard]] const HierarchyEntry* read() override {
    try {
      return readNext();
    } catch (const std::bad_alloc&) {
      close();
      entry_.kind = HierarchyKind::error;
      entry_.error = ENOMEM;
      return &entry_;
    }
  }

  void skip() override {
    if (next_ == Next::inside) next_ = Next::endOfSkipped;
  }

  void close() override {
    next_ = Next::nothing;
    found_ = {};
    chain_.clear();
  }

 private:
  enum class Next { root, inside, endOfSkipped, item, nothing };

  const HierarchyEntry* readNext() {
    switch (std::exchange(next_, Next::item)) {
      case Next::root:
        return readRoot();
      case Next::inside:
        if (!enterFound()) return &entry_;
        break;
      case Next::endOfSkipped:
        found_.descriptor = FileDescriptor();
        return tell(HierarchyKind::folderEnd);
      case Next::item:
        break;
      case Next::nothing:
        next_ = Next::nothing;
        return nullptr;
    }
    return readItem();
  }

  const HierarchyEntry* readRoot() {
    // A path with a zero byte leads nowhere.
    const bool isName = path_.find('\0') == std::string::npos;
    if (!isName) found_.error = ENOENT;
    const HierarchyKind kind = isName
                                   ? opener_.openRoot(path_.c_str(), path_.ends_with('/'), found_)
                                   : HierarchyKind::noStatus;
    next_ = Next::nothing;
    if (kind == HierarchyKind::folder) return tellFolder();
    return tell(kind, found_.error);
  }

  const HierarchyEntry* readItem() {
    while (!chain_.isEmpty()) {
      WalkedFolder& folder = chain_.innermost();
      if (folder.records.isEmpty() && !refill(folder)) return leave(folder);
      const FolderRecord record = records_.take(folder.records, folder.isExhausted);
      if (isDots(record.name)) continue;
      setPath(folder, record.name);
      const bool mayBeFolder = record.type == DT_DIR || record.type == DT_UNKNOWN;
      return mayBeFolder ? examine(folder) : tell(opener_.kindOfType(record.type));
    }
    next_ = Next::nothing;
    return nullptr;
  }

  // False at the folder's end.
  bool refill(WalkedFolder& folder) {
    if (!folder.unread.empty()) {
      records_.fill(folder.records, folder.unread);
      folder.unread = {};
      return true;
    }
    if (folder.isExhausted) return false;
    folder.readingError = records_.fill(folder.records, folder.descriptor.get());
    folder.isExhausted = folder.records.isEmpty();
    return !folder.isExhausted;
  }

  void setPath(const WalkedFolder& folder, const char* name) {
    const std::size_t nameLength = std::strlen(name);
    const std::size_t length = folder.itemOffset + nameLength;
    // With room for a slash and a zero byte.
    if (path_.size() < length + 2) path_.resize((length + 2) * 2);
    std::memcpy(path_.data() + folder.itemOffset, name, nameLength);
    entry_.path = {path_.data(), length};
    entry_.name = {path_.data() + folder.itemOffset, nameLength};
    entry_.level = chain_.size();
  }

  // The item that the path names, which may be a folder.
  const HierarchyEntry* examine(WalkedFolder& parent) {
    path_[entry_.path.size()] = '\0';
    found_ = {};
    found_.isBeyondMount = parent.isBeyondMount;
    if (parent.openingError != 0) return tell(HierarchyKind::noStatus, parent.openingError);
    HierarchyKind kind = opener_.open(parent.descriptor.get(), entry_.name.data(), found_);
    if (makesRoom()) kind = opener_.open(parent.descriptor.get(), entry_.name.data(), found_);
    if (kind != HierarchyKind::folder) return tell(kind, found_.error);
    if (!found_.isIdentified || !chain_.holds(found_)) return tellFolder();
    found_.descriptor = FileDescriptor();
    return tell(HierarchyKind::folderCycle);
  }

  // Whether the last try to open a folder failed for lack of descriptors that are free now.
  bool makesRoom() {
    const bool ranOut = found_.error == EMFILE || found_.error == ENFILE;
    if (!ranOut || !chain_.closeOuterFolders()) return false;
    found_.error = 0;
    return true;
  }

  // False, with an entry, where there is nothing to walk through.
  bool enterFound() {
    if (found_.isForeign) {
      tell(HierarchyKind::folderEnd);
      return false;
    }
    const bool isLeftAlone = !found_.descriptor.isOpen() && found_.error == 0;
    if (isLeftAlone) {
      const int parent = chain_.innermost().descriptor.get();
      FolderOpener::enter(parent, entry_.name.data(), found_);
      if (makesRoom()) FolderOpener::enter(parent, entry_.name.data(), found_);
    }
    if (!found_.descriptor.isOpen()) {
      tell(HierarchyKind::unreadableFolder, found_.error);
      return false;
    }
    push();
    return true;
  }

  void push() {
    WalkedFolder folder;
    folder.descriptor = std::move(found_.descriptor);
    folder.isBeyondMount = found_.isBeyondMount;
    folder.isIdentified = found_.isIdentified;
    folder.identity = found_.identity;
    folder.pathLength = entry_.path.size();
    folder.nameOffset = static_cast<std::size_t>(entry_.name.data() - path_.data());
    folder.itemOffset = folder.pathLength;
    if (!entry_.path.ends_with('/')) {
      path_.resize(std::max(path_.size(), folder.itemOffset + 1));
      path_[folder.itemOffset++] = '/';
    }
    if (!chain_.isEmpty()) folder.records = RecordStack::partAfter(chain_.innermost().records);
    chain_.push(std::move(folder));
  }

  const HierarchyEntry* leave(const WalkedFolder& folder) {
    entry_.path = {path_.data(), folder.pathLength};
    entry_.name = entry_.path.substr(folder.nameOffset);
    entry_.level = chain_.size() - 1;
    const int error = folder.readingError;
    chain_.pop(path_.data());
    return tell(error == 0 ? HierarchyKind::folderEnd : HierarchyKind::unreadableFolder, error);
  }

  const HierarchyEntry* tellFolder() {
    next_ = Next::inside;
    return tell(HierarchyKind::folder);
  }

  const HierarchyEntry* tell(HierarchyKind kind, int error = 0) {
    entry_.kind = kind;
    entry_.error = error;
    return &entry_;
  }

  // The entry's path, and room behind it.
  std::string path_;
  FolderOpener opener_;
  RecordStack records_{};
  FolderChain chain_{};
  FoundFolder found_{};
  HierarchyEntry entry_{};
  Next next_ = Next::root;
};

}  // namespace

int openLinuxHierarchy(std::string_view path, HierarchyOptions options,
                       std::unique_ptr<FileHierarchy>& hierarchy) {
  if (path.empty()) return ENOENT;
  try {
    hierarchy = std::make_unique<LinuxFileHierarchy>(path, options);
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
  return 0;
}

}  // namespace vornix
