#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vornix {

// Bits of an item's flags.
inline constexpr std::uint32_t UF_HIDDEN = 0x8000;
inline constexpr std::uint32_t SF_RESTRICTED = 0x80000;

// Times are whole seconds since 1970-01-01 00:00 UTC, those before it negative and rounded down.
struct FileDetails {
  // 0 where the file system keeps none.
  std::int64_t birthTime = 0;
  std::int64_t modificationTime = 0;
  std::int64_t accessTime = 0;
  // 0 where the file system has no such flags.
  std::uint32_t flags = 0;
};

// What a file system knows about an item beside its type and permissions. Paths are bytes, relative
// ones start at the current folder; an empty path and one with a zero byte name nothing. Operations
// answer 0, or the system's error number (as <cerrno> names it) and have then left their results
// alone. Any thread.
class FileAttributes {
 public:
  virtual ~FileAttributes() = default;

  // Follows links.
  [[nodiscard]] virtual int details(std::string_view path, FileDetails& details) const = 0;
  // The names of the extended attributes, each with a zero byte at its end, in no particular order.
  // A link is not followed. Those that people and programs may set freely come as they were named,
  // those of the system's own name spaces with the space in front. ENOTSUP where the file system
  // has none.
  [[nodiscard]] virtual int extendedAttributeNames(std::string_view path,
                                                   std::string& names) const = 0;
};

// The process's own, never destroyed.
[[nodiscard]] const FileAttributes& sharedFileAttributes();

}  // namespace vornix
