#pragma once

#include <sys/types.h>

#include "platform/files/FileHierarchy.h"
#include "platform/linux/files/hierarchy/FolderIdentity.h"
#include "platform/linux/system/FileDescriptor.h"

struct stat;

namespace vornix {

// What stands behind an item that may be a folder.
struct FoundFolder {
  FileDescriptor descriptor{};
  // Why there is no descriptor; 0 also for one that is opened only when it is entered.
  int error = 0;
  // Set where it was asked.
  bool isIdentified = false;
  FolderIdentity identity{};
  // Others are mounted here or above: the folder may be one that led to it.
  bool isBeyondMount = false;
  // On another device, where the walk must not go.
  bool isForeign = false;
};

// Looks at the folders below the one that a walk began with, without asking for the status of each:
// within one mount no folder is its own ancestor, and on most file systems none has a device of its
// own.
class FolderOpener {
 public:
  explicit FolderOpener(HierarchyOptions options) : options_(options) {}

  // The first item. Answers its kind.
  HierarchyKind openRoot(const char* path, bool followsLink, FoundFolder& found);
  // An item of an open folder that may be a folder; `found` knows whether that lies beyond a mount.
  // Answers its kind. EMFILE and ENFILE in `found` are worth another try.
  HierarchyKind open(int parent, const char* name, FoundFolder& found);
  // What `open` has found but left alone.
  static void enter(int parent, const char* name, FoundFolder& found);

  // The kind by what the item's folder tells of its type.
  [[nodiscard]] HierarchyKind kindOfType(unsigned char type) const;

 private:
  [[nodiscard]] int openWithinMount(int parent, const char* name);
  HierarchyKind lookAt(FoundFolder& found) const;
  HierarchyKind lookWithoutOpening(int parent, const char* name, int error,
                                   FoundFolder& found) const;
  void identify(FoundFolder& found, const struct stat& status) const;
  [[nodiscard]] HierarchyKind kindOfMode(mode_t mode) const;

  HierarchyOptions options_;
  dev_t rootDevice_ = 0;
  bool knowsMounts_ = true;
  bool asksEachDevice_ = false;
};

}  // namespace vornix
