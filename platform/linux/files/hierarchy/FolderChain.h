#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/linux/files/hierarchy/FolderIdentity.h"
#include "platform/linux/files/hierarchy/FolderOpener.h"
#include "platform/linux/files/hierarchy/RecordStack.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {

// A folder that a walk is in. Its path is a part of the walk's, from the start.
struct WalkedFolder {
  FileDescriptor descriptor{};
  RecordStack::Part records{};
  // Records of a folder that was closed before all of them were looked at.
  std::string unread{};
  // The kernel has told all.
  bool isExhausted = false;
  bool isBeyondMount = false;
  bool isIdentified = false;
  FolderIdentity identity{};
  // Why it could not be read to its end.
  int readingError = 0;
  // Why it could not be opened again.
  int openingError = 0;
  std::size_t pathLength = 0;
  std::size_t nameOffset = 0;
  // Where the names of its items begin.
  std::size_t itemOffset = 0;
};

// The folders that a walk is in, the innermost last. Deep ones are kept closed while the walk is
// below them, and opened again only when they are still the same.
class FolderChain {
 public:
  [[nodiscard]] bool isEmpty() const { return folders_.empty(); }
  [[nodiscard]] std::size_t size() const { return folders_.size(); }
  [[nodiscard]] WalkedFolder& innermost() { return folders_.back(); }

  void push(WalkedFolder folder);
  // Leaves the innermost folder, whose path begins with the others' names.
  void pop(const char* path);
  // Whether the folder, which must be identified, is one of these.
  [[nodiscard]] bool holds(const FoundFolder& folder);
  // Closes all that can be closed but the innermost; false when there is nothing to close.
  bool closeOuterFolders();
  void clear() { folders_.clear(); }

 private:
  static void close(WalkedFolder& folder);
  static bool identify(WalkedFolder& folder);
  // Opens the last folder again, from the one below it or else by its names.
  void reopen(const FileDescriptor& child, const char* path);
  [[nodiscard]] FileDescriptor openByNames(const char* path) const;

  std::vector<WalkedFolder> folders_;
};

}  // namespace vornix
