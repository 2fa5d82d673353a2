#pragma once

#include <dirent.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace vornix {

// One item as the kernel tells it; stays until the stack is filled again.
struct FolderRecord {
  const char* name = nullptr;
  unsigned char type = DT_UNKNOWN;
};

// The records not yet looked at of all folders that a walk is in. Those of the innermost folder
// come last, so that one block of memory serves all.
class RecordStack {
 public:
  // A folder's part of the block.
  struct Part {
    std::size_t begin = 0;
    std::size_t next = 0;
    std::size_t end = 0;

    [[nodiscard]] bool isEmpty() const { return next == end; }
  };

  // Behind the records of the folder around it.
  [[nodiscard]] static Part partAfter(const Part& outer) {
    return {outer.end, outer.end, outer.end};
  }

  // The next of the part's records, of which there must be one. Tells in `isLast` when the kernel
  // marked it as the folder's last.
  [[nodiscard]] FolderRecord take(Part& part, bool& isLast) const {
    const char* record = block_.get() + part.next;
    part.next += valueAt<unsigned short>(record, offsetof(dirent64, d_reclen));
    if (part.isEmpty()) isLast = isEndMark(valueAt<off64_t>(record, offsetof(dirent64, d_off)));
    return {record + offsetof(dirent64, d_name),
            valueAt<unsigned char>(record, offsetof(dirent64, d_type))};
  }

  // Both are for a part whose records have all been taken, and the last one. The first reads some
  // more of an open folder; answers 0 or an error number, and an empty part at the folder's end.
  [[nodiscard]] int fill(Part& part, int folder);
  void fill(Part& part, std::string_view records);

 private:
  template <typename T>
  static T valueAt(const char* record, std::size_t offset) {
    T value;
    std::memcpy(&value, record + offset, sizeof value);
    return value;
  }

  // What the file systems in everyday use answer for the place behind the last item, where no item
  // can be. Any other place is worth one more question.
  static bool isEndMark(off64_t place) {
    return place == std::numeric_limits<std::int64_t>::max() ||
           place == std::numeric_limits<std::int32_t>::max();
  }

  void makeRoom(std::size_t begin, std::size_t size);

  std::unique_ptr<char[]> block_{};
  std::size_t size_ = 0;
};

// All that an open folder has not told yet. Answers 0 or an error number; what came before an error
// is there.
[[nodiscard]] int readRemainingRecords(int folder, std::string& records);

}  // namespace vornix
