#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/files/NSFileManager.h"
#include "platform/files/Volumes.h"

namespace vornix::fakes {

// Folders, files, links and mounted volumes in memory. Set before threads read it.
class FakeFileTree {
 public:
  // Where relative paths start.
  std::string currentFolder = "/";

  // Absolute paths without links; the folders on the way are made.
  void addFolder(const std::string& path);
  void addFile(const std::string& path);
  void addLink(const std::string& path, const std::string& target);
  // From now on another volume begins at this folder or file, holding what stands there.
  void mountAt(const std::string& path);
  // The same, holding what stands at `source` now.
  void bind(const std::string& source, const std::string& path);
  void clear();

  // The path without links, empty for the root; none for what does not exist. The item itself is
  // followed on demand only.
  [[nodiscard]] std::optional<std::string> resolve(std::string_view path, bool followsItem) const;
  [[nodiscard]] bool isFolder(const std::string& resolved) const;
  [[nodiscard]] bool isMountPoint(const std::string& resolved) const;

 private:
  enum class Kind { folder, file, link };
  struct Item {
    Kind kind = Kind::folder;
    std::string target;
  };
  void add(const std::string& path, const Item& item);

  std::map<std::string, Item, std::less<>> items_;
  std::set<std::string, std::less<>> mounts_;
};

class FakeFileManager final : public NSFileManager {
 public:
  explicit FakeFileManager(const FakeFileTree& tree) : tree_(tree) {}
  [[nodiscard]] bool fileExistsAtPath(std::string_view path, bool* isDirectory) const override;

 private:
  const FakeFileTree& tree_;
};

class FakeVolumes final : public Volumes {
 public:
  explicit FakeVolumes(const FakeFileTree& tree) : tree_(tree) {}
  [[nodiscard]] std::optional<std::string> volumePathOf(std::string_view path) const override;

 private:
  const FakeFileTree& tree_;
};

// The one that the process's file manager and volumes show on the fake platform.
FakeFileTree& fileTree();

}  // namespace vornix::fakes
