#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/FileHierarchy.h"

namespace vornix {

enum class FileType {
  regular,
  directory,
  symbolicLink,
  socket,
  characterSpecial,
  blockSpecial,
  unknown
};

struct FileStatus {
  FileType type = FileType::unknown;
  // The lowest nine are read, write and execute, for owner, group and others.
  std::uint32_t permissions = 0;
  // Whether it belongs to the account that this process runs under.
  bool isOwn = false;
  // Whether it is flagged so that nothing about it may be changed, and, of a folder, nothing in it
  // made or removed. Never true where the file system has no such flag.
  bool isImmutable = false;
};

// What a folder holds.
struct FolderItem {
  std::string name{};
  // A link to a folder is none.
  bool isFolder = false;
};

// A folder that stays the same one, whatever comes to stand at its path meanwhile. Operations
// answer as those of a file system. One thread at a time.
class HeldFolder {
 public:
  explicit HeldFolder(std::string_view path) : path_(path) {}
  virtual ~HeldFolder() = default;
  HeldFolder(const HeldFolder&) = delete;
  HeldFolder& operator=(const HeldFolder&) = delete;

  // The path that led to it.
  [[nodiscard]] const std::string& path() const { return path_; }
  // The names of what it holds now, in its own order, each with a zero byte behind it.
  [[nodiscard]] virtual int list(std::string& names) const = 0;
  // An item of it, as `FileSystem::remove` does.
  [[nodiscard]] virtual int remove(const std::string& name) = 0;

 private:
  const std::string path_;
};

// What can be done to the items of a file system. Paths are bytes, relative ones start at the
// current folder; an empty path and one with a zero byte name nothing. Operations answer 0, or the
// system's error number (as <cerrno> names it) and have then left their results alone. Any thread.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  [[nodiscard]] virtual int status(std::string_view path, bool followsLinks,
                                   FileStatus& status) const = 0;
  // The text of a link, as it stands; EINVAL for anything else.
  [[nodiscard]] virtual int readLink(std::string_view path, std::string& target) const = 0;
  // What the folder at the path, or at the end of a link there, holds now, in its own order.
  // ENOTDIR for anything else.
  [[nodiscard]] virtual int list(std::string_view path, std::vector<FolderItem>& items) const = 0;
  // A walk from the path. Only the empty path and too little memory make it fail; a path that leads
  // nowhere is a walk with one entry, `noStatus`.
  [[nodiscard]] virtual int openHierarchy(std::string_view path, HierarchyOptions options,
                                          std::unique_ptr<FileHierarchy>& hierarchy) const = 0;
  // In a folder that exists; the process's mask is taken from the permissions. EEXIST for whatever
  // stands there already, links that lead nowhere included.
  [[nodiscard]] virtual int makeFolder(std::string_view path, std::uint32_t permissions) = 0;
  // The same for an empty file, with all permissions that the mask leaves but those to execute.
  [[nodiscard]] virtual int makeFile(std::string_view path) = 0;
  // Holds on to the folder at the path, or at the end of a link there; ENOTDIR for anything else.
  [[nodiscard]] virtual int holdFolder(std::string_view path,
                                       std::unique_ptr<HeldFolder>& folder) const = 0;
  // A folder goes with all that is in it, a link by itself: nothing beyond a link is ever touched.
  // The first failure ends it; what was removed stays removed. EINVAL for names that end in "." or
  // "..", EBUSY for the root.
  [[nodiscard]] virtual int remove(std::string_view path) = 0;
  // An item gets another path, a link itself. EEXIST, before anything else, where anything stands
  // already; in a folder that ignores case, only the letters' case may change. To another volume a
  // folder goes with all that is in it and is removed here once everything is safely there: what
  // fails before leaves this side whole and nothing there, and of what fails later, or is cut short
  // by the end of the process, each item is whole on one side at least.
  [[nodiscard]] virtual int move(std::string_view source, std::string_view destination) = 0;
  // Sets or clears the flag. Clearing it where there cannot be one, as of a link, does nothing.
  [[nodiscard]] virtual int setImmutable(std::string_view path, bool isImmutable) = 0;
  // Absolute; empty where it cannot be told, as when it has been removed: relative paths then name
  // nothing.
  [[nodiscard]] virtual std::string currentFolder() const = 0;
};

// The process's own, never destroyed.
[[nodiscard]] FileSystem& sharedFileSystem();

}  // namespace vornix
