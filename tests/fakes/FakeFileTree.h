#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileSystem.h"
#include "platform/files/NSFileManager.h"
#include "platform/files/Trash.h"
#include "platform/files/Volumes.h"
#include "tests/fakes/FakeStandardDirectories.h"

namespace vornix::fakes {

// Folders, files, links and mounted volumes in memory. Set before threads read it.
class FakeFileTree {
 public:
  // Where relative paths start; nowhere when it is empty.
  std::string currentFolder = "/";
  // A walk that comes to this item cannot go on.
  std::string walkBreaker;
  // What closing a walk throws, if it does.
  std::string closingFault;
  // Others may neither set nor clear the flag that makes items immutable.
  bool isRoot = true;

  // Absolute paths without links; the folders on the way are made.
  void addFolder(const std::string& path);
  void addFile(const std::string& path);
  void addLink(const std::string& path, const std::string& target);
  // From now on another volume begins at this folder or file, holding what stands there.
  void mountAt(const std::string& path);
  // The same, holding what stands at `source` now.
  void bind(const std::string& source, const std::string& path);
  void clear();

  // From now on nothing can be made or removed in this folder, for that error number.
  void refuseChangesIn(const std::string& path, int error);
  // From now on what this folder holds cannot be read, for that error number.
  void refuseReading(const std::string& path, int error);
  // What stands there belongs to somebody else.
  void disown(const std::string& path);

  struct Item {
    FileType type = FileType::directory;
    std::string target{};
    std::uint32_t permissions = 0755;
    bool isOwn = true;
    bool isImmutable = false;
  };
  // The path without links, empty for the root; none for what does not exist. The item itself is
  // followed on demand only.
  [[nodiscard]] std::optional<std::string> resolve(std::string_view path, bool followsItem) const;
  // The same, with the reason for none as an error number; else 0.
  [[nodiscard]] int locate(std::string_view path, bool followsItem, std::string& resolved) const;
  // The item at such a path; the root when there is no other.
  [[nodiscard]] Item itemAt(const std::string& resolved) const;
  [[nodiscard]] bool isFolder(const std::string& resolved) const;
  [[nodiscard]] bool isMountPoint(const std::string& resolved) const;
  // The names of what such a folder holds; answers 0 or an error number.
  [[nodiscard]] int list(const std::string& resolved, std::vector<std::string>& names) const;
  // The mount point of the volume with this item, or of the one that was bound there.
  [[nodiscard]] std::string deviceOf(const std::string& resolved) const;
  // A new item, the end of one with all below it, another path for one, and its flag. Answer 0 or
  // an error number.
  int make(std::string_view path, const Item& item);
  int remove(std::string_view path);
  int move(std::string_view source, std::string_view destination);
  int setImmutable(std::string_view path, bool isImmutable);

 private:
  void add(const std::string& path, const Item& item);
  [[nodiscard]] int refusal(const std::string& folder) const;
  // Where an item that does not exist would stand.
  [[nodiscard]] int locateNew(std::string_view path, std::string& resolved) const;
  // Where the item itself stands, which can be taken away from there.
  [[nodiscard]] int locateRemovable(std::string_view path, std::string& resolved) const;

  std::map<std::string, Item, std::less<>> items_;
  std::map<std::string, int, std::less<>> refusals_;
  std::map<std::string, int, std::less<>> readingRefusals_;
  // Each with its device.
  std::map<std::string, std::string, std::less<>> mounts_;
};

// Permissions are kept and told, but hinder nobody, and no mask is taken from them.
class FakeFileSystem : public FileSystem {
 public:
  explicit FakeFileSystem(FakeFileTree& tree) : tree_(tree) {}

  [[nodiscard]] int status(std::string_view path, bool followsLinks,
                           FileStatus& status) const override;
  [[nodiscard]] int readLink(std::string_view path, std::string& target) const override;
  [[nodiscard]] int list(std::string_view path, std::vector<FolderItem>& items) const override;
  // The tree must outlive the walk, and not change meanwhile.
  [[nodiscard]] int openHierarchy(std::string_view path, HierarchyOptions options,
                                  std::unique_ptr<FileHierarchy>& hierarchy) const override;
  [[nodiscard]] int makeFolder(std::string_view path, std::uint32_t permissions) override;
  [[nodiscard]] int makeFile(std::string_view path) override;
  [[nodiscard]] int holdFolder(std::string_view path,
                               std::unique_ptr<HeldFolder>& folder) const override;
  [[nodiscard]] int remove(std::string_view path) override;
  [[nodiscard]] int move(std::string_view source, std::string_view destination) override;
  [[nodiscard]] int setImmutable(std::string_view path, bool isImmutable) override;
  [[nodiscard]] std::string currentFolder() const override;

 private:
  mutable std::mutex mutex_;
  FakeFileTree& tree_;
};

// A folder in the tree, "/Trash".
class FakeTrash final : public Trash {
 public:
  explicit FakeTrash(FakeFileTree& tree) : tree_(tree) {}

  // From now on there is no Trash for what stands in this folder, or for anything.
  void omitFor(const std::string& folder = "/") { omitted_.insert(folder); }

  [[nodiscard]] int moveToTrash(std::string_view path) override;

 private:
  std::mutex mutex_;
  FakeFileTree& tree_;
  std::set<std::string> omitted_;
};

// A file manager on a machine of its own, in memory.
struct FakeFileMachine {
  FakeFileTree tree;
  FakeStandardDirectories directories;
  FakeFileSystem fileSystem{tree};
  FakeTrash trash{tree};
  NSFileManager files{fileSystem, directories, trash};
};

class FakeVolumes final : public Volumes {
 public:
  explicit FakeVolumes(const FakeFileTree& tree) : tree_(tree) {}
  [[nodiscard]] std::optional<std::string> volumePathOf(std::string_view path) const override;

 private:
  const FakeFileTree& tree_;
};

// The one that the process's file system, volumes and Trash show on the fake platform.
FakeFileTree& fileTree();
FakeTrash& processTrash();

}  // namespace vornix::fakes
