#pragma once

#include <cstdint>
#include <string_view>

namespace vornix {

// A folder goes with all that is in it.
inline constexpr std::uint32_t REMOVEFILE_RECURSIVE = 0x01;
// What files hold is overwritten once before they go.
inline constexpr std::uint32_t REMOVEFILE_SECURE_1_PASS = 0x10;

struct RemovefileResult {
  // 0, or -1 with the system's error number (as <cerrno> names it).
  std::int32_t value = 0;
  int errorNumber = 0;

  friend bool operator==(const RemovefileResult&, const RemovefileResult&) = default;
};

// Removes items beyond recovery by reading the disk.
//
// Overwritten, with random bytes and over what is allocated to it, is every regular file whose last
// name goes. While it has names elsewhere, what it holds stays with them. Links and special files
// are never opened. Every item gets a random name before it goes. The bytes
// are on the disk before a file's name is touched; that the name is gone is on the disk whenever
// the file system next writes its journal. Nobody can promise that what was there before cannot be
// read from the medium: file systems that copy on write, keep snapshots or write data to a journal,
// and drives that move blocks about as flash does, keep the old blocks for as long as they like.
//
// Never goes beyond a link or into another mounted volume. The first failure ends it; what was
// removed by then stays removed, and a file at which it ended may have lost what it held. Files are
// overwritten some at a time, so several of those may have. What somebody else removes meanwhile is
// no failure, unless it is the item asked for; but a file that somebody else puts under a name
// after what was there had been overwritten is kept, and the end: EBUSY. It stays under a random
// name where its own is taken again at that instant. Any thread.
class FileRemover {
 public:
  virtual ~FileRemover() = default;

  // Paths are bytes, relative ones start at the current folder; an empty path and one with a zero
  // byte name nothing. A link is removed itself, unless a slash behind it asks for the folder that
  // it leads to. EBUSY for the root and for what others are mounted on, ENOTEMPTY without
  // REMOVEFILE_RECURSIVE for a folder that is not empty, EFBIG where the process's own limit on the
  // size of files forbids to overwrite one.
  [[nodiscard]] virtual RemovefileResult removefile(std::string_view path, std::uint32_t flags) = 0;
};

// The process's own, never destroyed.
[[nodiscard]] FileRemover& sharedFileRemover();

}  // namespace vornix
