#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/files/FolderDescent.h"
#include "platform/linux/files/FolderReader.h"
#include "platform/linux/files/ItemPlace.h"

namespace vornix {

// How exactly copies tell the times when their sources were modified: less than so many nanoseconds
// earlier.
inline constexpr std::int64_t kExactTimes = 1;
// They do not tell them.
inline constexpr std::int64_t kNoTimes = 0;

// How exactly this copy tells it.
[[nodiscard]] std::int64_t exactnessOfTimes(const struct statx& source, const struct statx& copy);

// Removes a folder with what is in it, but only what has been copied: an item whose copy is there,
// of the same kind, and for files and links of the same size and time of modification. What was
// changed or made since it was copied stays, with the folders around it.
class SourceRemoval {
 public:
  SourceRemoval(FolderDescent source, FolderDescent copy, std::int64_t exactness);

  // The folder itself goes, too, when it is still the one that has this name. Answers 0 or the
  // system's error number: EBUSY when something stays, at the end; any other failure ends it.
  [[nodiscard]] int run(const ItemPlace& place);

 private:
  struct Level {
    std::string name{};
    // Still to be removed.
    NameStack folders{};
    bool keepsSomething = false;
    // At the folder that is removed now.
    int attempts = 0;
  };

  int empty();
  int removeTop(const ItemPlace& place);
  int readFolder();
  int removeOrKeep(const char* name);
  int enter(std::string name);
  int leave();
  int keep();
  [[nodiscard]] bool isCopied(const struct statx& source, const struct statx& copy) const;

  FolderDescent source_;
  FolderDescent copy_;
  const std::int64_t exactness_;
  FolderReader reader_;
  std::vector<Level> levels_;
};

}  // namespace vornix
