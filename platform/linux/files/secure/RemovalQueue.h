#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/files/secure/FileOverwriting.h"
#include "platform/linux/files/secure/RandomBytes.h"
#include "platform/linux/system/FileDescriptor.h"

namespace vornix {

// The item went away, or the folder that it was in.
[[nodiscard]] inline bool meansAbsence(int error) {
  return error == ENOENT || error == ENOTDIR;
}

// Of the item itself. Answers 0 or the system's error number.
[[nodiscard]] int statusAt(int folder, const char* name, struct stat& status);

// Items on their way out. They are removed in the order in which they came, some at a time, so that
// the files among them are waited for together.
class RemovalQueue {
 public:
  // An open folder that items are in; kept open until they are gone.
  using Folder = std::shared_ptr<const FileDescriptor>;
  enum class Kind { folder, other };

  // With `renames`, each item gets a random name before it goes. `random` must outlive the queue.
  RemovalQueue(RandomBytes& random, bool renames)
      : random_(random), overwriting_(random), renames_(renames) {}

  // Operations answer 0 or the system's error number. When removing fails, what came before the
  // item that failed is gone, and what came after it is forgotten. With `renames`, EBUSY where an
  // item's name has since been given to a file that was not overwritten.
  [[nodiscard]] int add(Folder folder, std::string name, Kind kind);
  // One of several names of a regular file.
  [[nodiscard]] int addName(Folder folder, std::string name, const struct stat& status);
  [[nodiscard]] bool holdsNameOf(const struct stat& status) const;
  // An open regular file, which is overwritten now.
  [[nodiscard]] int addOverwritten(Folder folder, std::string name, FileDescriptor file,
                                   const struct stat& status);
  // Removes all that came so far.
  [[nodiscard]] int finish();
  // Items that are not there any more count as removed; that holds from the start.
  void expectItems() { expectsItems_ = true; }

 private:
  struct Item {
    Folder folder;
    std::string name;
    Kind kind = Kind::other;
    // Open when it was overwritten.
    FileDescriptor file{};
    // Of a regular file, where they are known.
    dev_t device = 0;
    ino_t inode = 0;

    [[nodiscard]] bool isNameOf(const struct stat& status) const {
      return status.st_ino == inode && status.st_dev == device;
    }
  };

  [[nodiscard]] int push(Item item, std::int64_t size);
  [[nodiscard]] int finishOverwriting(std::size_t& last);
  [[nodiscard]] int remove(const Item& item);
  [[nodiscard]] static int checkRenamed(const Item& item, const std::string& name);
  [[nodiscard]] int rename(int folder, std::string& name);

  RandomBytes& random_;
  FileOverwriting overwriting_;
  const bool renames_;
  bool expectsItems_ = false;
  std::vector<Item> items_;
  std::int64_t bytes_ = 0;
};

}  // namespace vornix
