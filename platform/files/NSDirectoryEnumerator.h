#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/FileHierarchy.h"
#include "platform/files/NSURL.h"

namespace vornix {

// Leaves out items whose names begin with a dot, and all that is below them.
inline constexpr std::uint32_t NSDirectoryEnumerationSkipsHiddenFiles = 4;

// Goes through all that is below a folder, a folder before what it holds. Links are told and not
// followed; what may not be read is passed over. A file manager makes it. What is added or removed
// meanwhile may or may not be told. One thread at a time.
class NSDirectoryEnumerator {
 public:
  // Enumerates nothing without a walk. The walk is of `folder`, which ends in a slash.
  NSDirectoryEnumerator(std::unique_ptr<FileHierarchy> hierarchy, std::string folder,
                        std::uint32_t options);

  // The next item's path, relative to the folder; none at the end.
  [[nodiscard]] std::optional<std::string> nextObject();
  // The next item's URL; none at the end. An item is the answer of one of the two only.
  [[nodiscard]] std::optional<NSURL> nextURL();

  // Of the item answered last: 1 for what lies directly in the folder, 2 below. 0 before the first.
  [[nodiscard]] std::size_t level() const { return level_; }
  // What is below the folder answered last is passed over. Nothing after anything but a folder.
  void skipDescendants();
  // The older form of the name.
  void skipDescendents() { skipDescendants(); }

  [[nodiscard]] static bool leavesOut(std::string_view name, std::uint32_t options) {
    return (options & NSDirectoryEnumerationSkipsHiddenFiles) != 0 && name.starts_with('.');
  }

 private:
  // The path relative to the folder, until the walk goes on.
  std::optional<std::string_view> advance();

  std::unique_ptr<FileHierarchy> hierarchy_;
  std::string folder_;
  std::uint32_t options_ = 0;
  std::size_t level_ = 0;
  bool isAtFolder_ = false;
};

}  // namespace vornix
