#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/linux/files/FolderDescent.h"
#include "platform/linux/files/FolderReader.h"
#include "platform/linux/files/ItemPlace.h"
#include "platform/linux/files/SourceRemoval.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {

// Of the item itself, also when it is a link. Answers 0 or the system's error number.
[[nodiscard]] int statusOfItem(int folder, const char* name, struct statx& status);

// Copies one item with all that is in it, so that it can take the item's place: contents with their
// holes, permissions, owners where allowed, times, extended attributes, and which names are names
// of one file. Refuses what could not be removed afterwards, what changes meanwhile, and, with
// EINVAL, the copy of a folder into itself.
class TreeCopy {
 public:
  // `workshop` is a folder that nobody else looks into; copies with several names have one more in
  // it. It must outlive the copying.
  explicit TreeCopy(int workshop) : workshop_(workshop) {}

  // Makes `copyName` in the workshop. Answers 0 or the system's error number, and has then left
  // what it had done so far. Once.
  [[nodiscard]] int run(int folder, const std::string& name, const std::string& copyName);
  // Afterwards, of a folder: removes what was copied of it, as `SourceRemoval` does. Once.
  [[nodiscard]] int removeSource(const ItemPlace& place);
  // Whether something had extended attributes that the workshop's file system cannot keep.
  [[nodiscard]] bool lostAttributes() const { return lostAttributes_; }

 private:
  struct Level {
    struct statx status {};
    // Still to be copied.
    NameStack folders{};
  };
  using FileIdentity = std::tuple<std::uint32_t, std::uint32_t, std::uint64_t>;

  int copyTree(FileDescriptor top, const std::string& copyName);
  int openLevel();
  int readFolder();
  int enter(const std::string& name);
  int leave();
  int copyOrKeep(const char* name);
  int copyItem(int folder, const char* name, const struct statx& status, int copyFolder,
               const char* copyName);
  int copyContents(int folder, const char* name, const struct statx& status, int copyFolder,
                   const char* copyName);
  int noteTime(const struct statx& status, int copyFolder, const char* copyName);
  int copyAgain(int folder, const char* name, const struct statx& status, int copyFolder,
                const char* copyName);
  int remember(const FileIdentity& file, int copyFolder, const char* copyName);

  const int workshop_;
  std::optional<FolderDescent> source_;
  std::optional<FolderDescent> copy_;
  FolderReader reader_;
  std::vector<Level> levels_;
  // Copies that have more names, with their names in `links_`.
  std::map<FileIdentity, std::string> known_;
  FileDescriptor links_;
  bool lostAttributes_ = false;
  // The least exact so far.
  std::int64_t exactness_ = kExactTimes;
};

}  // namespace vornix
